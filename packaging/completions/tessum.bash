# Completion of tessum for bash.

_tessum() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} words=
  if [ "$COMP_CWORD" -eq 1 ]; then
    words='record serve pause resume status day usage notes search note timeline clients install uninstall update
      doctor export forget backup settings --help --version'
  else
    case $previous in
      --from | --to) words='today yesterday' ;;
      --format) words='csv json' ;;
      -o | --output | --file) compopt -o default ;;
      --titles) words='each last none' ;;
      --away-after) words=never ;;
      --for | --limit | --app | --title) ;;
      *)
        case $command in
          record) words='--http --http-open --away-after --titles --no-update-check --help' ;;
          serve) words='--open --help' ;;
          day | usage | notes) words='today yesterday --plain --help' ;;
          search) words='--plain --limit --help' ;;
          note) words='--for --end --help' ;;
          timeline) words='today yesterday --output --help' ;;
          install) words='--all --file --http --help' ;;
          uninstall) words='--all --file --help' ;;
          update) words='--download --help' ;;
          doctor) words='--mend --close-open --help' ;;
          export) words='--from --to --format --raw --help' ;;
          forget) words='--from --to --app --title --hidden --yes --help' ;;
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
