# Sourced by installed-debian: two new users go from the installed package to an assistant's first
# answer with one command, and take all of it back. The first has a desktop without systemd; for the
# second, systemd's user manager runs the session.
# shellcheck shell=bash

# Every path of the user's home with its permissions and content, but for the history.
list_home() {
  (cd "$root/home/$1" && find . \
    \( -path ./.local -o -path ./.local/share -o -path './.local/share/Tessum' \
    -o -path './.local/share/Tessum/activities.db*' \
    -o -path ./.local/share/Tessum/recorder.lock \) -o -print | sort | while read -r path; do
    printf '%s %s ' "$(stat -c '%A %U' "$path")" "$path"
    if [ -L "$path" ]; then readlink "$path"; elif [ -f "$path" ]; then cksum <"$path"; else echo; fi
  done)
}

# make_user NAME: with an assistant whose file has a comment, and another that has none yet. The
# array NAME then runs a program as that user.
make_user() {
  declare -ga "$1"
  local -n command=$1
  "${inside[@]}" useradd --create-home "$1"
  command=(chroot "$root" setpriv "--reuid=$1" "--regid=$1" --init-groups env -i
    "HOME=/home/$1" "USER=$1" PATH=/usr/bin:/bin LC_ALL=C.UTF-8
    "XDG_RUNTIME_DIR=/run/user/$1" "DBUS_SESSION_BUS_ADDRESS=unix:path=/run/user/$1/bus"
    "DISPLAY=:$(cat "$notes/display")")
  mkdir -p "$root/run/user"
  "${inside[@]}" install -d -o "$1" -g "$1" -m 700 "/run/user/$1"
  "${command[@]}" mkdir "/home/$1/.cursor" "/home/$1/.claude"
  "${command[@]}" sh -c 'printf "{\r\n  // mine\r\n  \"mcpServers\": {},\r\n}" >~/.cursor/mcp.json'
}

not_recording() {
  says 'Recording  no' "$@" tessum status
}

# check_setup NAME WAY: the whole way of a new user; WAY is what starts the recorder at login.
check_setup() {
  local -n user=$1
  local begin=$SECONDS
  list_home "$1" >"$notes/$1-before"
  check "$1: a dry run changes nothing" says 'start recording now' "${user[@]}" tessum setup --dry-run
  list_home "$1" >"$notes/$1-after"
  check "$1: nothing was changed" same "$notes/$1-before" "$notes/$1-after"
  check "$1: setup waits for the first session" \
    says 'First session  XTerm' "${user[@]}" tessum setup --yes
  check "$1: a client that starts the entry reads the session" says 'XTerm' \
    "${user[@]}" node /opt/client/ask-registered.mjs "/home/$1/.claude.json"
  check "$1: that took less than two minutes" [ $((SECONDS - begin)) -lt 120 ]
  check "$1: it records" says 'Recording  yes' "${user[@]}" tessum status
  check "$1: it will at login" says "At login   yes, by $2" "${user[@]}" tessum status
  check "$1: the doctor finds nothing wrong" "${user[@]}" tessum doctor
  list_home "$1" >"$notes/$1-set-up"
  check "$1: setup changes nothing the second time" \
    says 'nothing was changed' "${user[@]}" tessum setup --yes
  list_home "$1" >"$notes/$1-again"
  check "$1: really nothing" same "$notes/$1-set-up" "$notes/$1-again"
}

check_undo() {
  local -n user=$1
  check "$1: setup is undone" says 'All of it was taken back' "${user[@]}" tessum setup --undo --yes
  check "$1: it stops recording" not_recording "${user[@]}"
  list_home "$1" >"$notes/$1-after"
  check "$1: all but the history is as before" same "$notes/$1-before" "$notes/$1-after"
  check "$1: the history stays" says 'XTerm' "${user[@]}" tessum search XTerm
}

try_without_systemd() {
  make_user grace
  "${grace[@]}" dbus-daemon --session --address=unix:path=/run/user/grace/bus --nofork --nopidfile \
    >/dev/null 2>&1 &
  local bus=$!
  check 'the user bus starts' eventually [ -S "$root/run/user/grace/bus" ]
  check_setup grace /home/grace/.config/autostart/tessum-record.desktop
  check 'the entry is valid' "${inside[@]}" \
    desktop-file-validate /home/grace/.config/autostart/tessum-record.desktop
  check_undo grace
  kill "$bus"
}

# As a session manager does it: a target of the session's own pulls in graphical-session.target.
session_unit() {
  cat <<'TEXT'
[Unit]
BindsTo=graphical-session.target
Before=graphical-session.target
TEXT
}

# systemd's user manager runs only where control groups can be made and the system looks booted.
try_with_systemd() {
  local group=/sys/fs/cgroup/tessum-trial-$$
  make_user hopper
  session_unit >"$root/etc/systemd/user/trial-session.target"
  mkdir -p "$root/run/systemd/system"
  mount -t sysfs sysfs "$root/sys" && mount -t cgroup2 cgroup2 "$root/sys/fs/cgroup" &&
    mkdir "$root$group" || {
    printf 'skipped %s\n' 'systemd: no control groups can be made here'
    return
  }
  "${inside[@]}" chown -R hopper "$group"
  "${inside[@]}" sh -c "echo \$\$ >$group/cgroup.procs && exec \"\$@\"" sh \
    "${hopper[@]:2}" /lib/systemd/systemd --user >"$notes/systemd" 2>&1 &
  local manager=$!
  check "systemd's user manager runs" \
    eventually "${hopper[@]}" systemctl --user --quiet is-active basic.target
  "${hopper[@]}" systemctl --user import-environment DISPLAY
  "${hopper[@]}" systemctl --user start trial-session.target
  check_setup hopper 'systemd, '
  check 'systemd says that the unit is enabled' \
    says enabled "${hopper[@]}" systemctl --user is-enabled tessum-record.service
  "${hopper[@]}" systemctl --user stop trial-session.target
  check 'the recorder ends with the session' eventually not_recording "${hopper[@]}"
  "${hopper[@]}" systemctl --user start trial-session.target
  check 'it starts with the next session by itself' \
    eventually says 'Recording  yes' "${hopper[@]}" tessum status
  check_undo hopper
  kill "$manager"
  wait "$manager" || true
  find "$root$group" -depth -type d -exec rmdir {} + || true
}

# After the package has gone, the homes are as they were but for the history.
check_homes() {
  local name
  for name in grace hopper; do
    [ -d "$root/home/$name" ] || continue
    list_home "$name" >"$notes/$name-after"
    check "$name: all but the history is as before" same "$notes/$name-before" "$notes/$name-after"
    rm -rf "$root/home/$name"
  done
  rm -f "$root/etc/systemd/user/trial-session.target"
}
