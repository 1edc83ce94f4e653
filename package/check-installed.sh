#!/bin/sh
# Runs in the fresh root of scripts/check-package.sh, with the package in /root/release1 and the next one in
# /root/release2.
set -eu
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8

step() {
    echo "=== $*"
}
fail() {
    echo "FAILED: $*" >&2
    cat /var/log/vesk-*.log >&2 2>/dev/null || true
    exit 1
}
# Waits until the command succeeds, 30 s at most.
await() {
    tries=300
    until "$@"; do
        tries=$((tries - 1))
        [ "$tries" -gt 0 ] || fail "never came true: $*"
        sleep 0.1
    done
}
apt_install() {
    apt-get install -qq -y --no-install-recommends "$@" >/var/log/check-apt.log 2>&1 || {
        cat /var/log/check-apt.log
        fail "apt-get install $*"
    }
}
as() {
    user=$1
    shift
    setpriv --reuid="$user" --regid="$user" --init-groups env HOME="/home/$user" TERM=xterm-256color "$@"
}

step "install, with what it depends on"
apt-get update -qq
apt_install /root/release1/vesk_*.deb
dpkg --verify vesk
getent group vesk >/dev/null || fail "no group vesk"
id -u vesk >/dev/null || fail "no user vesk"
for program in vesk.cursclient vesk.server vesk.simstation vesk.peer; do
    page=$(find /usr/share/man -name "$program.[18]")
    [ -s "$page" ] || fail "no manual page of $program"
done
sh /root/check-links.sh /usr/share/doc/vesk || fail "documents with dead links"
scenarios=/usr/share/doc/vesk/docs/scenarios
[ -s "$scenarios/ordinary-day.txt" ] || fail "no scenarios"

step "the group decides who may connect"
useradd --create-home --user-group --groups vesk observer
useradd --create-home --user-group stranger
install -d -o vesk -g vesk -m 0750 /run/vesk # as the unit's RuntimeDirectory does
setpriv --reuid=vesk --regid=vesk --clear-groups vesk.server 2>/var/log/vesk-server.log &
server=$!
await test -S /run/vesk/server.sock
[ "$(stat -c '%U:%G %a' /run/vesk/server.sock)" = "vesk:vesk 660" ] || fail "the socket is not the group's"
as observer vesk.simstation --scenario "$scenarios/counter-out-of-butanol.txt" --kinds cpc_3010,cpc_3022,neph \
    --speed 20 >/var/log/vesk-simstation.log 2>&1 &
lines=$(as observer vesk.peer --monitor --count 200 --timeout 60 </dev/null | wc -l)
[ "$lines" -eq 200 ] || fail "vesk.peer printed $lines lines of 200"
status=0
as stranger vesk.peer --count 1 --timeout 60 </dev/null >/dev/null 2>/var/log/vesk-stranger.log || status=$?
[ "$status" -eq 2 ] || fail "a stranger got in (status $status)"
grep -q "Permission denied" /var/log/vesk-stranger.log || fail "a stranger was not told why"

step "the console on a screen"
apt_install tmux
screen() {
    as observer tmux capture-pane -p -t console
}
shows() {
    screen | grep -qF -- "$1"
}
as observer tmux new-session -d -s console -x 80 -y 24 vesk.cursclient
await shows "UTC: "
as observer tmux send-keys -t console M-1
await shows "Last Average:"
screen

step "completion"
apt_install bash-completion
completed() {
    # shellcheck disable=SC2016  # bash's variables
    bash -c '. "/usr/share/bash-completion/completions/$1"; _vesk "$1" "$3" "$2"; echo "${COMPREPLY[*]}"' \
        bash "$@"
}
[ "$(completed vesk.peer "" --re)" = "--replay" ] || fail "completion of an option"
[ "$(completed vesk.simstation --kinds cpc_3010,nephM)" = "cpc_3010,nephM903" ] || fail "completion of a kind"
[ "$(completed vesk.server --socket /run/ves)" = "/run/vesk" ] || fail "completion of a path"
[ "$(completed vesk.cursclient "" -c)" = "-c" ] || fail "completion of the console's options"

step "upgrade under the running server"
echo "Settings;ErrorDisplayTime = 60" >/home/observer/.veskcursclient.conf
mkdir -p /etc/systemd/system/vesk.service.d
echo "[Service]" >/etc/systemd/system/vesk.service.d/override.conf
sums() {
    md5sum /home/observer/.veskcursclient.conf /etc/systemd/system/vesk.service.d/override.conf
    id observer
}
before=$(sums)
apt_install /root/release2/vesk_*.deb
[ "$(dpkg-query -W -f '${Version}' vesk)" = "$(dpkg-deb -f /root/release2/vesk_*.deb Version)" ] || fail "no upgrade"
[ "$(sums)" = "$before" ] || fail "the upgrade changed something: $(sums)"
kill -0 "$server" || fail "the upgrade ended the server"
clock=$(screen | grep -o 'UTC: .*')
moved() {
    [ "$(screen | grep -o 'UTC: .*')" != "$clock" ]
}
await moved
apt_install --reinstall /root/release2/vesk_*.deb
kill -0 "$server" || fail "a reinstallation ended the server"

step "end"
ended() {
    ! as observer tmux has-session -t console 2>/dev/null
}
ended && fail "the console has ended by itself"
as observer tmux send-keys -t console C-c
await ended
kill "$server"
wait "$server" || fail "the server ended with status $?"

step "the unit"
apt_install systemd
systemd-analyze verify --man=no /usr/lib/systemd/system/vesk.service || fail "the unit is wrong"
systemd-analyze security --offline=true --threshold=20 --no-pager vesk.service >/var/log/check-unit.log ||
    fail "the unit is not hardened: $(tail -1 /var/log/check-unit.log)"
tail -1 /var/log/check-unit.log
[ -L /etc/systemd/system/multi-user.target.wants/vesk.service ] || fail "the unit is not enabled"

step "remove and purge"
apt-get purge -qq -y vesk >/dev/null 2>&1 || fail "apt-get purge"
left=$(find / -xdev -name '*vesk*' -not -path '/home/*' -not -path '/proc/*' -not -path '/root/*' \
    -not -path '/var/log/*' -not -path '/run/*' -not -path '/etc/systemd/system/vesk.service.d')
[ -z "$left" ] || fail "left behind: $left"
[ -e /etc/systemd/system/vesk.service.d/override.conf ] || fail "the administrator's file has gone"
[ -e /home/observer/.veskcursclient.conf ] || fail "the observer's settings have gone"

step "passed"
