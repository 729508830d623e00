# Completion of brindle for fish. Brindle itself is asked for the names of shares, users and groups.

# Runs brindle on the host that the command line names so far, and prints its output.
function __brindle_ask
    set -l words (commandline -opc)
    set -l data $HOME/.local/share
    set -q XDG_DATA_HOME; and set data $XDG_DATA_HOME
    set -l root $data/brindle
    set -q BRINDLE_ROOT; and set root $BRINDLE_ROOT
    set -l host
    set -l given (string replace -f -- --root= '' $words)
    if set -l at (contains -i -- --root $words)
        set given $words[(math $at + 1)]
    end
    if set -q given[1]
        set root (string replace -r '^~(?=/|$)' $HOME -- $given[1])
        set host --root $root
    end
    # Asking for names must not create a root.
    if contains -- --system $words
        set host --system
    else if not test -e $root/directory.db
        return
    end
    brindle $host $argv 2>/dev/null </dev/null
end

function __brindle_names
    __brindle_ask $argv[1] list | cut -f 1
end

# The names of a server's settings.
function __brindle_keys
    __brindle_ask $argv[1] show | string replace -r ':.*' ''
end

# The words before the cursor, without the program, options and their values.
function __brindle_words
    set -l words (commandline -opc)[2..-1]
    while set -q words[1]
        switch $words[1]
            case --root --script --snapshot --print --port --owner --owner-may --group --group-may --everyone-may \
                    --folder --share --computer --full-name --uid --gid --password-fd
                set -e words[1]
            case '-*'
            case '*'
                echo -- $words[1]
        end
        set -e words[1]
    end
end

function __brindle_noun
    test (count (__brindle_words)) -eq 0
end

function __brindle_verb -a noun
    set -l words (__brindle_words)
    test (count $words) -eq 1; and test "$words[1]" = $noun
end

function __brindle_after
    set -l words (__brindle_words)
    test (count $words) -ge (count $argv); or return 1
    for index in (seq (count $argv))
        contains -- $words[$index] (string split , $argv[$index]); or return 1
    end
end

# The same, when exactly COUNT words follow the command.
function __brindle_at -a count
    __brindle_after $argv[2..-1]; and test (count (__brindle_words)) -eq (math $count + (count $argv) - 1)
end

# The words of a command that changes something.
function __brindle_writes
    not __brindle_noun; and not __brindle_after shares,users,groups list,show; and not __brindle_after smb,afp show
    and not __brindle_after servers status; and not __brindle_after history,check-access,doctor
    and not __brindle_verb sessions
end

function __brindle_key
    __brindle_after smb,afp set; and test (math (count (__brindle_words)) % 2) -eq 0
end

complete -c brindle -f
complete -c brindle -n __brindle_noun -a 'shares users groups public smb afp servers history undo check-access sessions doctor'
complete -c brindle -n '__brindle_verb shares' -a 'list show add set remove'
complete -c brindle -n '__brindle_verb users' -a 'list show add set remove password'
complete -c brindle -n '__brindle_verb groups' -a 'list show add set remove join leave'
complete -c brindle -n '__brindle_verb public' -a 'on off'
complete -c brindle -n '__brindle_verb smb' -a 'show set'
complete -c brindle -n '__brindle_verb afp' -a 'show set'
complete -c brindle -n '__brindle_verb servers' -a 'status start restart'
complete -c brindle -n '__brindle_verb sessions' -a disconnect
complete -c brindle -n '__brindle_at 0 shares show,set,remove' -a '(__brindle_names shares)'
complete -c brindle -n '__brindle_at 1 shares add' -a '(__fish_complete_directories)'
complete -c brindle -n '__brindle_at 0 users show,set,remove,password' -a '(__brindle_names users)'
complete -c brindle -n '__brindle_at 0 groups show,set,remove,join,leave' -a '(__brindle_names groups)'
complete -c brindle -n '__brindle_after groups join,leave; and not __brindle_at 0 groups join,leave' -a '(__brindle_names users)'
complete -c brindle -n '__brindle_after public on,off' -a '(__brindle_names users)'
complete -c brindle -n '__brindle_key; and __brindle_after smb' -a '(__brindle_keys smb)'
complete -c brindle -n '__brindle_key; and __brindle_after afp' -a '(__brindle_keys afp)'
complete -c brindle -n '__brindle_at 0 servers restart' -a 'smb afp'
complete -c brindle -n '__brindle_at 0 check-access' -a '(__brindle_names shares)'
complete -c brindle -n '__brindle_at 1 check-access' -a '(__brindle_names users)'
complete -c brindle -l help -d 'Print the help'
complete -c brindle -l root -x -a '(__fish_complete_directories)' -d 'Work on the embedded root in this folder'
complete -c brindle -l system -d 'Work on this computer itself'
complete -c brindle -n __brindle_noun -l version -d 'Print the version'
complete -c brindle -n __brindle_noun -l script -r -F -d 'Carry out the commands in this file'
complete -c brindle -n __brindle_noun -l print -x -a 'shares users groups' -d 'Print a table'
complete -c brindle -n __brindle_noun -l snapshot -x -a '(__fish_complete_directories)' -d 'Write pictures of the window'
complete -c brindle -n __brindle_noun -l dry-run -d 'Carry the script out on copies'
complete -c brindle -n __brindle_noun -l serve -d 'Run a file server for the root'
complete -c brindle -n __brindle_noun -l port -x -d 'The port of that server'
complete -c brindle -n 'not __brindle_noun' -l json -d 'Print one JSON object'
complete -c brindle -n __brindle_writes -l yes -d 'Answer every confirmation with yes'
complete -c brindle -n __brindle_writes -l dry-run -d 'Print what would be done, and do nothing'
complete -c brindle -n '__brindle_after shares add,set' -l owner -x -a '(__brindle_names users)'
complete -c brindle -n '__brindle_after shares,users add,set' -l group -x -a '(__brindle_names groups)'
for who in owner group everyone
    complete -c brindle -n '__brindle_after shares add,set' -l $who-may -x -a 'rw r w none'
end
for what in guests smb afp
    complete -c brindle -n '__brindle_after shares add,set' -l $what
    complete -c brindle -n '__brindle_after shares add,set' -l no-$what
end
complete -c brindle -n '__brindle_after shares set' -l folder -x -a '(__fish_complete_directories)'
complete -c brindle -n '__brindle_after users add,set' -l full-name -x
complete -c brindle -n '__brindle_after users add,set' -l uid -x -a next
complete -c brindle -n '__brindle_after users add,set' -l public
complete -c brindle -n '__brindle_after users add,set' -l no-public
complete -c brindle -n '__brindle_after users add' -l no-password
complete -c brindle -n '__brindle_after users add,password' -l password-stdin
complete -c brindle -n '__brindle_after users add,password' -l password-fd -x
complete -c brindle -n '__brindle_after groups add,set' -l gid -x -a next
complete -c brindle -n '__brindle_after public on,off' -l all
complete -c brindle -n '__brindle_after servers start' -l at-boot
complete -c brindle -n '__brindle_after check-access' -l guest
complete -c brindle -n '__brindle_after sessions disconnect' -l share -x -a '(__brindle_names shares)'
complete -c brindle -n '__brindle_after sessions disconnect' -l computer -x
