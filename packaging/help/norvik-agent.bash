_norvik_agent() {
  local word="${COMP_WORDS[COMP_CWORD]}" command="" each words
  for each in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case "$each" in
      inventory | files | explain | why | open | apply | diff | show | history | view | redact | keys | action | actions | configure | status | doctor | record | manual | completion | run | user | notify | message) command="$each"; break ;;
    esac
  done
  words='--help --version --data --config --log-level --module --socket --machine --really --user-process --json'
  case "$command" in
    '') words="$words inventory files explain why open apply diff show history view redact keys action actions configure status doctor record manual completion run user notify message" ;;
    inventory) words="$words --help --incremental" ;;
    files) words="$words --help --incremental --scheduled" ;;
    explain) words="$words --help" ;;
    why) words="$words --help" ;;
    open) words="$words --help --pretty --keys" ;;
    apply) words="$words --help --output --keys" ;;
    diff) words="$words --help --output --keys" ;;
    show) words="$words --help --list --live --csv --file --keys" ;;
    history) words="$words --help --changes --section --since --keys" ;;
    view) words="$words --help --output --open --redact --keys" ;;
    redact) words="$words --help --output --secret-file --map" ;;
    keys) words="$words --help --keys" ;;
    action) words="$words --help --rehearse" ;;
    actions) words="$words --help" ;;
    configure) words="$words --help --check" ;;
    status) words="$words --help" ;;
    doctor) words="$words --help --list --bundle" ;;
    record) words="$words --help --redact" ;;
    manual) words="$words --help" ;;
    completion) words="$words --help" ;;
    run) words="$words --help" ;;
    user) words="$words --help" ;;
    notify) words="$words --help" ;;
    message) words="$words --help" ;;
  esac
  COMPREPLY=()
  while IFS= read -r each; do COMPREPLY+=("$each"); done < <(compgen -W "$words" -- "$word")
}
complete -o default -F _norvik_agent norvik-agent
