# shellcheck shell=bash
# Completion for bash of orvo-report's words, options and values: source this file, or install it as
# share/bash-completion/completions/orvo-report.

# What may follow each word: its options.
declare -gA _orvo_report_options=(
  [make]='--out --format --report --templates --filter --settings --set --live --no-names --hosts --trust --limit --apdex --locale --code-page --no-progress --help'
  [watch]='--interface --replay --speed --out --format --every --new-set --keep --on-report --report --templates --filter --settings --set --no-names --hosts --trust --limit --apdex --locale --code-page --no-progress --help'
  [view]='--port --templates --open --help'
  [settings]='--settings --set --help'
  [classes]='--help'
  [register]='--help'
  [unregister]='--help'
)
_orvo_report_words='make watch view settings classes register unregister --help --version'
_orvo_report_limits='addresses= hierarchy= conversations= flows= calls= media-streams= names= expert-flows= expert-events= wireless-nodes= wireless-channels='
_orvo_report_formats='csv tab xml pdf'
_orvo_report_reports='full executive-summary expert-summary additional-node conversations'
_orvo_report_intervals='5s 1m 5m 15m 1h 1d'
_orvo_report_filters='arp broadcast ether host icmp icmp6 ip ip6 multicast net not port portrange tcp udp vlan'
_orvo_report_code_pages='UTF-8 US-ASCII ISO-8859-1 ISO-8859-15 windows-1250 windows-1251 windows-1252 Shift_JIS'

# _orvo_report_offer WORDS CURRENT: those of the words that begin like the current one.
_orvo_report_offer() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}

# _orvo_report_paths KIND CURRENT: files (-f) or folders (-d), completed as paths.
_orvo_report_paths() {
  compopt -o filenames 2>/dev/null # refused outside of a completion, where it does not matter
  mapfile -t COMPREPLY < <(compgen "$1" -- "$2")
}

# _orvo_report_value OPTION CURRENT: values of an option. Fails for an option that takes none.
_orvo_report_value() {
  local option=$1 current=$2
  case $option in
    --out | --templates) _orvo_report_paths -d "$current" ;;
    --settings | --hosts | --trust | --replay) _orvo_report_paths -f "$current" ;;
    --format)
      # Formats are joined by commas: offer the next one behind those that are there.
      local done_part=
      [[ $current == *,* ]] && done_part=${current%,*},
      local words=() format
      for format in $_orvo_report_formats; do
        [[ ,$done_part == *,$format,* ]] || words+=("$done_part$format")
      done
      _orvo_report_offer "${words[*]}" "$current"
      ;;
    --interface) _orvo_report_offer "any $(compgen -G '/sys/class/net/*' | sed 's|.*/||')" "$current" ;;
    --every) _orvo_report_offer "$_orvo_report_intervals" "$current" ;;
    --new-set) _orvo_report_offer "$_orvo_report_intervals never" "$current" ;;
    --keep) _orvo_report_offer '7 14 30 all' "$current" ;;
    --speed) _orvo_report_offer '1 10 60 1000' "$current" ;;
    --on-report)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -c -- "$current")
      ;;
    --report) _orvo_report_offer "$_orvo_report_reports" "$current" ;;
    --set)
      # The command knows its switches: they are the attributes of the document that it prints.
      local switches
      switches=$(orvo-report settings 2>/dev/null | sed -n '/<StatsOutputPrefs>/,$p' | grep -oE '[A-Za-z0-9]+="-?[0-9]+"' | sed 's/=.*/=/')
      compopt -o nospace 2>/dev/null
      _orvo_report_offer "$switches" "$current"
      ;;
    --limit)
      compopt -o nospace 2>/dev/null
      _orvo_report_offer "$_orvo_report_limits" "$current"
      ;;
    --locale) _orvo_report_offer "$(locale -a 2>/dev/null)" "$current" ;;
    --filter) _orvo_report_offer "$_orvo_report_filters" "$current" ;;
    --code-page) _orvo_report_offer "$_orvo_report_code_pages" "$current" ;;
    *) return 1 ;;
  esac
}

_orvo_report() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  COMPREPLY=()

  if ((COMP_CWORD == 1)); then
    _orvo_report_offer "$_orvo_report_words" "$current"
    return
  fi

  # Bash makes three words of --format=csv, and of NodePackets=0.
  if [[ $current == = ]]; then
    current=
  elif [[ $previous == = ]]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  if [[ ${COMP_WORDS[COMP_CWORD]} == = || ${COMP_WORDS[COMP_CWORD - 1]} == = ]] && [[ $previous != -* ]]; then
    _orvo_report_offer '0 1' "$current"
    return
  fi
  _orvo_report_value "$previous" "$current" && return

  local word=${COMP_WORDS[1]}
  if [[ $current == -* ]]; then
    _orvo_report_offer "${_orvo_report_options[$word]:-}" "$current"
  elif [[ $word == make ]]; then
    _orvo_report_paths -f "$current"
  elif [[ $word == view ]]; then
    _orvo_report_paths -d "$current"
  fi
}

complete -F _orvo_report orvo-report
