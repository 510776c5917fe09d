# Completion of tessum for fish.

function __tessum_add
    complete -c tessum -n "__fish_seen_subcommand_from $argv[1]" $argv[2..]
end

# The words that the program completes as KIND.
function __tessum_words
    set -l program (commandline -opc)[1]
    $program complete $argv (commandline -ct | string unescape) 2>/dev/null
end

set -l periods '(__tessum_words periods)'
complete -c Tessum -w tessum
complete -c tessum -f
complete -c tessum -l help -d 'Show help'
complete -c tessum -n __fish_use_subcommand -l version -d 'Show the version'
set -l commands setup record serve pause resume status day usage category notes search note timeline clients install \
    uninstall update doctor export import forget backup settings help
complete -c tessum -n __fish_use_subcommand -a "$commands"
__tessum_add setup -l undo -d 'Take back what setup has done'
__tessum_add setup -l yes -d 'Do not ask'
__tessum_add setup -l dry-run -d 'Only show what it would do'
__tessum_add record -l http -d 'Answer over HTTP'
__tessum_add record -l http-open -d 'Answer whoever asks over HTTP'
__tessum_add serve -l open -d 'Answer whoever asks'
__tessum_add record -l away-after -x -d 'How long until you are away'
__tessum_add record -l titles -x -a 'each last none' -d 'How titles are recorded'
__tessum_add record -l no-update-check -d 'Do not look for a newer release'
for command in day usage notes
    __tessum_add $command -a "$periods"
    __tessum_add $command -l plain -d 'The text that assistants get'
end
for command in day usage search timeline export forget
    __tessum_add $command -l app -x -a '(__tessum_words applications)' -d 'Only this application'
    __tessum_add $command -l title -x -d 'Only titles with this text'
    __tessum_add $command -l category -x -a '(__tessum_words categories)' -d 'Only this category'
end
__tessum_add usage -l by -x -a 'app title category note day weekday hour' -d 'What to add up'
__tessum_add usage -l top -x -d 'Only the largest'
__tessum_add category -a "try $periods"
for command in status doctor clients settings
    __tessum_add $command -l json -d 'Data as JSON'
end
for command in day usage notes search
    __tessum_add $command -l json -d 'Data as JSON'
    __tessum_add $command -l csv -d 'Data as comma-separated lines'
end
__tessum_add search -l plain -d 'The text that assistants get'
__tessum_add search -l limit -x -d 'The most lines'
__tessum_add search -l in -x -a "$periods" -d 'Only these days'
__tessum_add note -l for -x -d 'How long already'
__tessum_add note -l at -x -d 'When'
__tessum_add note -l edit -x -d 'Change a note'
__tessum_add note -l delete -x -d 'Delete a note'
__tessum_add note -l end -d 'End the note'
__tessum_add timeline -a "$periods"
__tessum_add timeline -s o -l output -r -F -d 'Write to a file'
__tessum_add install -a '(__tessum_words clients)'
__tessum_add uninstall -a '(__tessum_words clients)'
__tessum_add install -l all -d 'Every application on this computer'
__tessum_add install -l replace -d 'Rewrite the whole file'
__tessum_add install -l dry-run -d 'Only show what would change'
__tessum_add install -l http -d 'Use the HTTP endpoint'
__tessum_add install -l file -r -F -d 'A configuration file'
__tessum_add uninstall -l all -d 'Every application with an entry'
__tessum_add uninstall -l dry-run -d 'Only show what would change'
__tessum_add uninstall -l file -r -F -d 'A configuration file'
__tessum_add update -l download -d 'Download the newer version'
__tessum_add doctor -l mend -d 'Close files to other users'
__tessum_add doctor -l close-open -d 'End sessions left open'
for command in export forget
    __tessum_add $command -a "$periods"
    __tessum_add $command -l from -x -a "$periods" -d 'The first day'
    __tessum_add $command -l to -x -a "$periods" -d 'The last day'
end
__tessum_add export -l raw -d 'No apostrophe before formulas'
__tessum_add export -l format -x -a 'csv json' -d 'The format'
__tessum_add forget -l hidden -d 'What the settings hide'
__tessum_add forget -l yes -d 'Do not ask'
__tessum_add import -F -l dry-run -d 'Only count'
__tessum_add import -F
__tessum_add backup -F
__tessum_add pause -a 'until 30m 1h'
__tessum_add settings -a 'edit check try'
complete -c tessum -n '__fish_seen_subcommand_from settings; and __fish_seen_subcommand_from try' -a '(__tessum_words applications)'
__tessum_add help -a "$commands"
functions -e __tessum_add
