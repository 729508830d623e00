# Completion of brindle for bash. Brindle itself is asked for the names of shares, users and groups.

_brindle_ask() {
    # Runs brindle on the host that the command line names so far, and prints its output.
    local index root="${BRINDLE_ROOT:-${XDG_DATA_HOME:-$HOME/.local/share}/brindle}" host=()
    for ((index = 1; index < COMP_CWORD; index++)); do
        case "${COMP_WORDS[index]}" in
            --system) host=(--system) ;;
            --root)
                root="${COMP_WORDS[index + 1]}"
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
    # For files, bash itself quotes the names and adds the slash.
    compopt -o filenames 2>/dev/null
    COMPREPLY=($(compgen "$1" -- "$word"))
}

_brindle_reply() {
    local candidate
    COMPREPLY=()
    while IFS= read -r candidate; do
        if [[ "$candidate" == "$word"* ]]; then
            COMPREPLY+=("$(printf '%q' "$candidate")")
        fi
    done
}

_brindle() {
    local word="${COMP_WORDS[COMP_CWORD]}" previous="${COMP_WORDS[COMP_CWORD - 1]}"
    local noun="" verb="" count=0 index
    for ((index = 1; index < COMP_CWORD; index++)); do
        case "${COMP_WORDS[index]}" in
            --root | --script | --snapshot | --print | --port) ((index++)) ;;
            --owner | --owner-may | --group | --group-may | --everyone-may | --folder) ((index++)) ;;
            --share | --computer) ((index++)) ;;
            --full-name | --uid | --gid | --password-fd) ((index++)) ;;
            -*) ;;
            *)
                if [ -z "$noun" ]; then
                    noun="${COMP_WORDS[index]}"
                elif [ -z "$verb" ]; then
                    verb="${COMP_WORDS[index]}"
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
            else
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
                "shares show" | "shares set" | "shares remove") _brindle_reply < <(_brindle_names shares) ;;
                "users show" | "users set" | "users remove" | "users password" | "public "*)
                    _brindle_reply < <(_brindle_names users)
                    ;;
                "groups join" | "groups leave")
                    if [ "$count" -eq 0 ]; then
                        _brindle_reply < <(_brindle_names groups)
                    else
                        _brindle_reply < <(_brindle_names users)
                    fi
                    ;;
                "groups show" | "groups set" | "groups remove") _brindle_reply < <(_brindle_names groups) ;;
                "servers restart") _brindle_reply <<<$'smb\nafp' ;;
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
