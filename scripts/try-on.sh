#!/bin/sh
# Tries the README's commands on a fresh Debian system: starts the viewer with ./run.sh on a virtual display and ends
# it, runs ./test.sh, builds the package.
#
#   scripts/try-on.sh bookworm|trixie [FOLDER]
#
# Needs root and debootstrap. The system is installed into a temporary folder, or into FOLDER, which is kept and
# reused. Its packages come from this machine's Debian mirror unless MIRROR names another one.
set -eu

case ${1:-} in
    bookworm | trixie) release=$1 ;;
    *) sed -n '2,/^set -eu/{/^set -eu/d;s/^# \{0,1\}//;p}' "$0" >&2; exit 2 ;;
esac
if [ -n "${2:-}" ]; then
    mkdir -p "$2"
    root=$(cd "$2" && pwd)
else
    root=$(mktemp -d)
    trap 'rm -rf --one-file-system "$root"' EXIT
fi
cd "$(dirname "$0")/.."
mirror=${MIRROR:-$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Label: Debian' 'Component: main' | head -n 1)}

# In a mount namespace of its own, so that nothing stays mounted.
[ -x "$root/usr/bin/apt-get" ] || unshare --mount debootstrap --variant=minbase "$release" "$root" "$mirror"
tree=$root/usr/src/ql240-viewer
rm -rf "$tree"
mkdir -p "$tree" "$root/tmp/try"
tar -cf - --exclude=./build --exclude=./.git --exclude=./.cache . | tar -xf - -C "$tree"

cat > "$root/tmp/try/inside.sh" <<'INSIDE'
set -eu
mount -t proc proc /proc
mount -t sysfs -o ro sysfs /sys
export DEBIAN_FRONTEND=noninteractive HOME=/tmp/try/home XDG_RUNTIME_DIR=/tmp/try/run
mkdir -p -m 700 "$HOME" "$XDG_RUNTIME_DIR"
cd /usr/src/ql240-viewer
apt-get update -qq
apt-get install -y -qq --no-install-recommends xvfb xdotool > /tmp/try/tools.log
rm -f /tmp/try/display

Xvfb -displayfd 3 -screen 0 1280x800x24 3> /tmp/try/display 2> /dev/null &
display=$!
until [ -s /tmp/try/display ]; do kill -0 "$display"; sleep 0.1; done
DISPLAY=:$(cat /tmp/try/display) ./run.sh > /tmp/try/run.log 2>&1 &
viewer=$!
trap 'tail -n 30 /tmp/try/run.log' EXIT
until readlink "/proc/$viewer/exe" | grep -q '/ql240-viewer$'; do kill -0 "$viewer"; sleep 0.1; done
built=$(wc -l < /tmp/try/run.log)
DISPLAY=:$(cat /tmp/try/display) timeout 60 xdotool search --sync --onlyvisible --name '^QL240 Viewer$' > /dev/null
i=0
until grep -qs '[Q]tWebEngineProcess' /proc/[0-9]*/cmdline; do kill -0 "$viewer"; i=$((i + 1)); [ $i -lt 600 ]; sleep 0.1; done
sleep 5 # time for late output
kill "$viewer"
wait "$viewer" || [ $? -eq 143 ]
kill "$display"
said=$(tail -n "+$((built + 1))" /tmp/try/run.log)
[ -z "$said" ] || { echo "The viewer stood, but said on the terminal:"; exit 1; }
trap - EXIT
echo "./run.sh: the viewer stood, its map engine ran, and neither said a word"

./test.sh
packaging/build-deb.sh
INSIDE
# In a PID namespace of its own too, so that no process outlives the trial. Shared memory isn't this machine's: libraries
# of another release leave files there that their other versions stumble over.
unshare --pid --fork --mount --kill-child sh -c 'mount --rbind /dev "$1/dev"; mount -t tmpfs tmpfs "$1/dev/shm"
    exec chroot "$1" sh /tmp/try/inside.sh' \
    sh "$root"
