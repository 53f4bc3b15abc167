# Completion of tavinstall for bash.

_tavinstall() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command= word
  COMPREPLY=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in run | status | attach | stop | new | split | rehearse | check | manifest | verify | log | help) command=$word; break ;; esac
  done

  local products="Tessaphon Lumaweave Bassoria TemporaQX"
  case $previous in
    --product) COMPREPLY=($(compgen -W "$products" -- "$current")); return ;;
    --install-type) COMPREPLY=($(compgen -W "Lite Full" -- "$current")); return ;;
    --format)
      local formats="text json"
      [[ $command != check ]] || formats+=" sarif github"
      COMPREPLY=($(compgen -W "$formats" -- "$current")); return ;;
    --ui)
      local frontends="json plain quiet terminal"
      [ "$command" != attach ] || frontends="plain terminal"
      COMPREPLY=($(compgen -W "$frontends" -- "$current"))
      return ;;
    --optional-discs) COMPREPLY=($(compgen -W "skip wait" -- "$current")); return ;;
    --mode) COMPREPLY=($(compgen -W "discs download data-update product-update" -- "$current")); return ;;
    --language) COMPREPLY=($(compgen -W "en de fr es it ja zh-Hans" -- "$current")); return ;;
    --fail-on) COMPREPLY=($(compgen -W "error warning note" -- "$current")); return ;;
    --select | --ignore | --explain) return ;;
    --images) COMPREPLY=($(compgen -W "iso squashfs" -- "$current")); return ;;
    --disc-size) COMPREPLY=($(compgen -W "dvd5 dvd9 bd25 bd50 usb:64g" -- "$current")); return ;;
    --late | --discs | --reserve | --disc-timeout) return ;;
    --installed | --keep) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -d -- "$current"); return ;;
    --package | --manifest | --summary | --report | --storyboard | --bundle) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
  esac

  local options
  case $command in
    run) options="--package --install-type --product --bundle --ui --no-notify --summary --unattended --disc-timeout --optional-discs --complete --no-preinstall --trusted --without-attributes --help" ;;
    status) options="--json --help" ;;
    attach) options="--ui --no-notify --help" ;;
    stop) options="--help" ;;
    new) options="--product --mode --discs --editions --language --help" ;;
    split) options="--disc-size --reserve --product --full-only --copy --link --images --manifest --dry-run --help" ;;
    rehearse) options="--product --install-type --installed --allow-outside --late --keep --report --ui --storyboard --language --help" ;;
    check) options="--product --install-type --installed --format --select --ignore --fail-on --fix --explain --help" ;;
    manifest) options="--product --help" ;;
    verify) options="--package --manifest --install-type --json --help" ;;
    log) options="--last --check --bundle --format --help" ;;
    help) options="--help" ;;
    *) options="--help --version" ;;
  esac
  if [[ $current == -* ]]; then
    COMPREPLY=($(compgen -W "$options" -- "$current"))
    return
  fi
  case $command in
    '') COMPREPLY=($(compgen -W "run status attach stop new split rehearse check manifest verify log help" -- "$current")) ;;
    help) COMPREPLY=($(compgen -W "run status attach stop new split rehearse check manifest verify log exit-status" -- "$current")) ;;
    new | split | rehearse | check | manifest | verify) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
    log) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
  esac
}

complete -F _tavinstall tavinstall
