# Completion of rcpinspect for bash.

_rcpinspect() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command="" isLaunchers="" index
    for ((index = 1; index < COMP_CWORD; index++)); do
        case ${COMP_WORDS[index]} in
            --) isLaunchers=1 && break ;;
            doctor | why | config | explain | check | status | diff | report) [[ -n $command ]] || command=${COMP_WORDS[index]} ;;
        esac
    done

    # "html" alone of all formats is followed by a file.
    if [[ $previous == html && ${COMP_WORDS[COMP_CWORD - 2]} == --format ]]; then
        previous="--format html"
    fi
    local formats="text json" options="--install --launcher --root --format --home --user --locale --env-file --redact --show-secrets --help"
    [[ $command != report ]] || formats=text
    case $command in
        config) options+=" --files" ;;
        explain) formats+=" html" options+=" --all" ;;
        doctor) options+=" --try-jvm" ;;
        check) formats+=" sarif html" options+=" --strict --all --try-jvm" ;;
        status) options+=" --watch" ;;
        diff) formats+=" html" options+=" --with --since-last --all" ;;
        report) options+=" --output --host" ;;
    esac

    COMPREPLY=()
    case $isLaunchers:$previous in
        1:-data | :--install | :--with | :--home | :--root)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            ;;
        1:-vm | 1:-plugincustomization | ":--format html" | :--launcher | :--output | :-o | :--env-file)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            ;;
        :--format) mapfile -t COMPREPLY < <(compgen -W "$formats" -- "$current") ;;
        1:*)
            mapfile -t COMPREPLY < <(compgen -W "-application -config -console -data -debug -maxargcnt
                -personality -plugincustomization -product -resetconfig -vm -vmargs" -- "$current")
            ;;
        *)
            if [[ -z $command && $current == -* ]]; then
                options="--help --version"
            elif [[ -z $command ]]; then
                options="doctor why config explain check status diff report"
            fi
            mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
            ;;
    esac
}
complete -F _rcpinspect rcpinspect
