# Completion of tessum for bash.

# Offers what the program completes as KIND. The word at the cursor may be quoted.
_tessum_offer() {
  local line typed=${word//\\/}
  [[ $word != [\"\']* ]] || typed=${word:1}
  while IFS= read -r line; do
    [[ $line == "$typed"* ]] || continue
    [[ $word == [\"\']* ]] || printf -v line %q "$line"
    COMPREPLY+=("$line")
  done < <("${COMP_WORDS[0]/#~/$HOME}" complete "$1" "$typed" 2>/dev/null)
}

_tessum() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} words= kind=
  local commands='setup record serve pause resume status day usage category notes search note timeline clients install uninstall
    update doctor export import forget backup settings help'
  # Bash makes a word of the sign in --app=NAME.
  if [ "$word" = = ]; then
    word=
  elif [ "$previous" = = ]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  if [ "$COMP_CWORD" -eq 1 ]; then
    words="$commands --help --version"
  else
    case $previous in
      --from | --to | --in) kind=periods ;;
      --app) kind=applications ;;
      --category) kind=categories ;;
      --format) words='csv json' ;;
      --by) words='app title category note day weekday hour' ;;
      -o | --output | --file) compopt -o default ;;
      --titles) words='each last none' ;;
      --away-after) words=never ;;
      --for | --at | --edit | --delete | --limit | --top | --title) ;;
      *)
        case $command in
          setup) words='--undo --yes --dry-run --help' ;;
          record) words='--http --http-open --away-after --titles --no-update-check --help' ;;
          serve) words='--open --help' ;;
          day) words='--app --title --category --json --csv --plain --help' ;;
          usage) words='--by --top --app --title --category --json --csv --plain --help' ;;
          category) words='try --help' ;;
          notes) words='--json --csv --plain --help' ;;
          search) words='--json --csv --plain --limit --in --app --title --category --help' ;;
          note) words='--for --at --edit --delete --end --help' ;;
          timeline) words='--output --app --title --category --help' ;;
          install) words='--all --file --http --replace --dry-run --help' ;;
          uninstall) words='--all --file --dry-run --help' ;;
          update) words='--download --help' ;;
          status | clients) words='--json --help' ;;
          doctor) words='--mend --close-open --json --help' ;;
          export) words='--from --to --app --title --category --format --raw --help' ;;
          import)
            compopt -o default
            words='--dry-run --help'
            ;;
          forget) words='--from --to --app --title --category --hidden --yes --help' ;;
          pause) words='until 30m 1h --help' ;;
          settings) words='edit check try --json --help' ;;
          backup) compopt -o default ;;
          help) words=$commands ;;
          *) words='--help' ;;
        esac
        case $command in
          day | usage | category | notes | timeline | export | forget) kind=periods ;;
          install | uninstall) kind=clients ;;
          settings) [ "$previous" != try ] || kind=applications ;;
        esac
        ;;
    esac
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
  [ -z "$kind" ] || _tessum_offer "$kind"
}
complete -F _tessum tessum Tessum
