# Completion of tessum for bash.

_tessum() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} words=
  local periods='today yesterday week last-week month last-month year'
  if [ "$COMP_CWORD" -eq 1 ]; then
    words='record serve pause resume status day usage category notes search note timeline clients install uninstall update
      doctor export forget backup settings --help --version'
  else
    case $previous in
      --from | --to | --in) words=$periods ;;
      --format) words='csv json' ;;
      --by) words='app title category note day weekday hour' ;;
      -o | --output | --file) compopt -o default ;;
      --titles) words='each last none' ;;
      --away-after) words=never ;;
      --for | --limit | --top | --app | --title | --category) ;;
      *)
        case $command in
          record) words='--http --http-open --away-after --titles --no-update-check --help' ;;
          serve) words='--open --help' ;;
          day) words="$periods --app --title --category --json --csv --plain --help" ;;
          usage) words="$periods --by --top --app --title --category --json --csv --plain --help" ;;
          category) words="try $periods --help" ;;
          notes) words="$periods --json --csv --plain --help" ;;
          search) words='--json --csv --plain --limit --in --help' ;;
          note) words='--for --end --help' ;;
          timeline) words="$periods --output --help" ;;
          install) words='--all --file --http --help' ;;
          uninstall) words='--all --file --help' ;;
          update) words='--download --help' ;;
          doctor) words='--mend --close-open --help' ;;
          export) words="$periods --from --to --format --raw --help" ;;
          forget) words="$periods --from --to --app --title --hidden --yes --help" ;;
          pause) words='until 30m 1h --help' ;;
          settings) words='edit check try --help' ;;
          backup) compopt -o default ;;
          *) words='--help' ;;
        esac
        ;;
    esac
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -F _tessum tessum Tessum
