# Completion of brindle for bash. Brindle itself is asked for the names of shares, users and groups.

_brindle_unquote() {
    # Sets $typed to what a typed word means, without expanding it: completing a line must not run what is in it.
    local rest="$1" quote="" letter
    typed=""
    while [ -n "$rest" ]; do
        letter="${rest:0:1}" rest="${rest:1}"
        if [ "$letter" = "$quote" ]; then
            quote=""
        elif [[ -z "$quote" && "$letter" == [\'\"] ]]; then
            quote="$letter"
        elif [[ "$letter" == \\ && ( -z "$quote" || ( "$quote" == \" && "$rest" == [\"\\\$\`]* ) ) ]]; then
            typed+="${rest:0:1}" rest="${rest:1}"
        else
            typed+="$letter"
        fi
    done
}

_brindle_read_line() {
    # Sets $line to the words before the one that is completed, as the program would get them, but with --root=DIR as
    # two words; bash makes three of it, zsh one.
    local index typed
    line=()
    for ((index = 0; index < COMP_CWORD; index++)); do
        _brindle_unquote "${COMP_WORDS[index]}"
        case "$typed" in
            =) ;;
            --*=*) line+=("${typed%%=*}" "${typed#*=}") ;;
            *) line+=("$typed") ;;
        esac
    done
}

_brindle_ask() {
    # Runs brindle on the host that the command line names so far, and prints its output.
    local index root="${BRINDLE_ROOT:-${XDG_DATA_HOME:-$HOME/.local/share}/brindle}" host=()
    for ((index = 1; index < ${#line[@]}; index++)); do
        case "${line[index]}" in
            --system) host=(--system) ;;
            --root)
                root="${line[index + 1]}"
                [[ "$root" != "~" && "$root" != "~/"* ]] || root="$HOME${root:1}"
                host=(--root "$root")
                ;;
        esac
    done
    # Asking must not create a root.
    if [ "${host[0]-}" != --system ] && [ ! -e "$root/directory.db" ]; then
        return
    fi
    brindle "${host[@]}" "$@" 2>/dev/null </dev/null
}

_brindle_names() {
    _brindle_ask "$1" list | cut -f 1
}

_brindle_files() {
    # For files, bash itself quotes the names and adds the slash. Zsh takes a level of quotes off.
    local candidate
    COMPREPLY=()
    compopt -o filenames 2>/dev/null
    while IFS= read -r candidate; do
        [ -z "${ZSH_VERSION-}" ] || candidate="$(printf '%q' "$candidate")"
        COMPREPLY+=("$candidate")
    done < <(compgen "$1" -- "$typed")
}

_brindle_reply() {
    # What is typed may begin with a quote. Then bash keeps it, and takes the rest as it comes.
    local candidate begun="${word:0:1}"
    [ -z "${ZSH_VERSION-}" ] || begun=""
    COMPREPLY=()
    while IFS= read -r candidate; do
        [[ "$candidate" == "$typed"* ]] || continue
        case "$begun" in
            \') candidate="${candidate//$begun/$begun\\$begun$begun}" ;;
            \") candidate="$(sed 's/[\\"$`]/\\&/g' <<<"$candidate")" ;;
            *) candidate="$(printf '%q' "$candidate")" ;;
        esac
        COMPREPLY+=("$candidate")
    done
}

_brindle() {
    local word="${COMP_WORDS[COMP_CWORD]}" previous typed line=()
    local noun="" verb="" count=0 index
    _brindle_read_line
    previous="${line[${#line[@]} - 1]}"
    [ "$word" != = ] || word="" # the value of --owner=
    _brindle_unquote "$word"
    for ((index = 1; index < ${#line[@]}; index++)); do
        case "${line[index]}" in
            --root | --script | --snapshot | --print | --port) ((index++)) ;;
            --owner | --owner-may | --group | --group-may | --everyone-may | --folder) ((index++)) ;;
            --share | --computer) ((index++)) ;;
            --full-name | --uid | --gid | --password-fd) ((index++)) ;;
            -*) ;;
            *)
                if [ -z "$noun" ]; then
                    noun="${line[index]}"
                elif [ -z "$verb" ]; then
                    verb="${line[index]}"
                else
                    ((count++))
                fi
                ;;
        esac
    done

    case "$previous" in
        --share) _brindle_reply < <(_brindle_names shares); return ;;
        --owner) _brindle_reply < <(_brindle_names users); return ;;
        --group) _brindle_reply < <(_brindle_names groups); return ;;
        --owner-may | --group-may | --everyone-may) _brindle_reply <<<$'rw\nr\nw\nnone'; return ;;
        --uid | --gid) _brindle_reply <<<next; return ;;
        --print) _brindle_reply <<<$'shares\nusers\ngroups'; return ;;
        --root | --snapshot | --folder) _brindle_files -d; return ;;
        --script) _brindle_files -f; return ;;
        --full-name | --password-fd | --port | --computer) COMPREPLY=(); return ;; # nobody knows their values
    esac

    if [[ "$word" == -* ]]; then
        local options="--json --help --root --system"
        case "$noun $verb" in
            "shares add") options+=" --yes --dry-run --owner --owner-may --group --group-may --everyone-may --guests --no-guests --smb --no-smb --afp --no-afp" ;;
            "shares set") options+=" --yes --dry-run --folder --owner --owner-may --group --group-may --everyone-may --guests --no-guests --smb --no-smb --afp --no-afp" ;;
            "users add") options+=" --yes --dry-run --full-name --uid --group --public --no-public --password-stdin --password-fd --no-password" ;;
            "users set") options+=" --yes --dry-run --full-name --uid --group --public --no-public" ;;
            "users password") options+=" --yes --dry-run --password-stdin --password-fd" ;;
            "groups add" | "groups set") options+=" --yes --dry-run --gid" ;;
            "public on" | "public off") options+=" --yes --dry-run --all" ;;
            "servers start") options+=" --yes --dry-run --at-boot" ;;
            "check-access "*) options+=" --guest" ;;
            "sessions disconnect") options+=" --yes --dry-run --share --computer" ;;
            shares" " | users" " | groups" " | public" " | smb" " | afp" " | servers" ") options="--help --root --system" ;;
            *" list" | *" show" | *" status" | "history " | "doctor " | "sessions ") ;;
            " ") options="--help --version --root --system --script --print --snapshot --dry-run --serve --port" ;;
            *) options+=" --yes --dry-run" ;;
        esac
        _brindle_reply < <(tr ' ' '\n' <<<"$options")
        return
    fi

    case "$noun" in
        "") _brindle_reply <<<$'shares\nusers\ngroups\npublic\nsmb\nafp\nservers\nhistory\nundo\ncheck-access\nsessions\ndoctor' ;;
        sessions) [ -n "$verb" ] || _brindle_reply <<<disconnect ;;
        check-access)
            if [ -z "$verb" ]; then
                _brindle_reply < <(_brindle_names shares)
            elif [ "$count" -eq 0 ]; then
                _brindle_reply < <(_brindle_names users)
            fi
            ;;
        shares | users | groups | public | smb | afp | servers)
            if [ -z "$verb" ]; then
                case "$noun" in
                    shares) _brindle_reply <<<$'list\nshow\nadd\nset\nremove' ;;
                    users) _brindle_reply <<<$'list\nshow\nadd\nset\nremove\npassword' ;;
                    groups) _brindle_reply <<<$'list\nshow\nadd\nset\nremove\njoin\nleave' ;;
                    public) _brindle_reply <<<$'on\noff' ;;
                    smb | afp) _brindle_reply <<<$'show\nset' ;;
                    servers) _brindle_reply <<<$'status\nstart\nrestart' ;;
                esac
                return
            fi
            case "$noun $verb" in
                "shares add") [ "$count" -eq 1 ] && _brindle_files -d ;;
                "shares show" | "shares set" | "shares remove") [ "$count" -ne 0 ] || _brindle_reply < <(_brindle_names shares) ;;
                "users show" | "users set" | "users remove" | "users password")
                    [ "$count" -ne 0 ] || _brindle_reply < <(_brindle_names users)
                    ;;
                "public "*) _brindle_reply < <(_brindle_names users) ;;
                "groups join" | "groups leave")
                    if [ "$count" -eq 0 ]; then
                        _brindle_reply < <(_brindle_names groups)
                    else
                        _brindle_reply < <(_brindle_names users)
                    fi
                    ;;
                "groups show" | "groups set" | "groups remove") [ "$count" -ne 0 ] || _brindle_reply < <(_brindle_names groups) ;;
                "servers restart") [ "$count" -ne 0 ] || _brindle_reply <<<$'smb\nafp' ;;
                "smb set" | "afp set")
                    if [ $((count % 2)) -eq 0 ]; then
                        _brindle_reply < <(_brindle_ask "$noun" show | cut -d : -f 1)
                    fi
                    ;;
            esac
            ;;
    esac
}

complete -F _brindle brindle
