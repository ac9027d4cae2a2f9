#!/bin/sh
# Tries the package on a fresh Debian 12: installs it, starts the viewer from its desktop entry, plays the recordings
# of a card, starts the settings tool through the entry's action, purges the package and looks for left-overs.
#
#   packaging/try-deb.sh CARD PICTURES
#
# CARD is a folder made by ql240-demo-card; viewer.png and settings.png are written to PICTURES. Needs root and
# debootstrap. The system is installed into a temporary folder, or into ROOT, which is kept and reused. Its packages
# come from this machine's Debian mirror unless MIRROR names another one.
set -eu

[ $# -eq 2 ] || { sed -n '2,/^set -eu/{/^set -eu/d;s/^# \{0,1\}//;p}' "$0" >&2; exit 2; }
card=$(cd "$1" && pwd)
mkdir -p "$2"
pictures=$(cd "$2" && pwd)
cd "$(dirname "$0")/.."
mirror=${MIRROR:-$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Codename: bookworm' 'Component: main' | head -n 1)}
root=${ROOT:-$(mktemp -d)}

end() {
    for place in dev/pts dev/shm; do umount "$root/$place" 2>/dev/null || true; done
    [ -n "${ROOT:-}" ] || rm -rf "$root"
}
trap end EXIT

[ -x "$root/bin/sh" ] || debootstrap --variant=minbase bookworm "$root" "$mirror"
mount -t tmpfs -o mode=1777 tmpfs "$root/dev/shm"
mount -t devpts devpts "$root/dev/pts"
rm -rf "$root/tmp/try"
mkdir -p "$root/tmp/try"
cp build/package/ql240-viewer_*.deb "$root/tmp/try/"
cp -r "$card" "$root/tmp/try/card"

cat > "$root/tmp/try/inside.sh" <<'INSIDE'
set -eu
mount -t proc proc /proc
export DEBIAN_FRONTEND=noninteractive HOME=/tmp/try/home XDG_RUNTIME_DIR=/tmp/try/run
mkdir -m 700 "$HOME" "$XDG_RUNTIME_DIR"
apt-get update -qq
apt-get install -y -qq /tmp/try/ql240-viewer_*.deb > /tmp/try/install.log
apt-get install -y -qq --no-install-recommends xvfb openbox libgtk-3-bin xdotool imagemagick > /tmp/try/tools.log
ldd /usr/bin/ql240-viewer /usr/bin/ql240-clip /usr/lib/ql240/*.so | grep 'not found' && exit 1
ql240-clip track --format gpx /tmp/try/card/VIDEO | grep -q '<trkpt'

Xvfb -displayfd 3 -screen 0 1280x800x24 3> /tmp/try/display 2> /dev/null &
until [ -s /tmp/try/display ]; do sleep 0.1; done
DISPLAY=:$(cat /tmp/try/display)
export DISPLAY
openbox 2> /dev/null &
mkdir -p "$HOME/.config/QL240"
printf '[storage]\nlastfolder=/tmp/try/card/VIDEO\n' > "$HOME/.config/QL240/local.ini"

gtk-launch ql240-viewer
window=$(timeout 30 xdotool search --sync --onlyvisible --name '^QL240 Viewer$' | head -n 1)
sleep 3
xdotool windowactivate --sync "$window" key ctrl+o
timeout 30 xdotool search --sync --onlyvisible --name '^Open Folder$' > /dev/null
sleep 1
xdotool key Return
sleep 8
import -window root /tmp/try/viewer.png
xdotool windowclose "$window"

$(sed -n '/^\[Desktop Action settings/,$s/^Exec=//p' /usr/share/applications/ql240-viewer.desktop) &
timeout 30 xdotool search --sync --onlyvisible --name '^QL240 Setting$' > /dev/null
sleep 1
import -window root /tmp/try/settings.png

apt-get purge -y -qq ql240-viewer > /tmp/try/purge.log
left=$(find / -xdev \( -path /tmp -o -path /proc \) -prune -o -iname '*ql240*' -print)
[ -z "$left" ] || { echo "left behind: $left"; exit 1; }
echo "installed, played, removed without a trace"
INSIDE
# In a PID namespace of its own, so that no process outlives the trial.
unshare --pid --fork --mount --kill-child chroot "$root" sh /tmp/try/inside.sh
cp "$root/tmp/try/viewer.png" "$root/tmp/try/settings.png" "$pictures/"
