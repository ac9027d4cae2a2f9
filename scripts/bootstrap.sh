#!/bin/sh
# Installs the Debian packages that are needed: bootstrap.sh [run] [test] [bench] [package] [fuzz]. Prints what it
# installs; does nothing if nothing is missing. Uses sudo only if not root.
set -eu

run="g++ cmake ninja-build pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-svg-dev qt6-webengine-dev qt6-webengine-dev-tools qt6-declarative-dev qt6-wayland
    libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev libyuv-dev libjs-leaflet libxcb1-dev
    gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-plugins-bad gstreamer1.0-libav
    gstreamer1.0-alsa gstreamer1.0-pulseaudio gstreamer1.0-pipewire
    udisks2 dbus fonts-open-sans fonts-nanum tzdata ca-certificates xdg-utils"
test="ffmpeg libimage-exiftool-perl gpsbabel gdal-bin dbus-daemon pulseaudio pulseaudio-utils xvfb openbox weston xdotool
    gstreamer1.0-tools clang-format clang-tidy"
bench="ffmpeg mpv libimage-exiftool-perl gstreamer1.0-plugins-base-apps xvfb python3 xdotool"
package="build-essential dpkg-dev debhelper fakeroot lintian appstream desktop-file-utils debootstrap"
fuzz="clang-14 libclang-rt-14-dev"

wanted=
for set in "${@:-run}"; do
    case $set in
        run) wanted="$wanted $run" ;;
        test) wanted="$wanted $run $test" ;;
        bench) wanted="$wanted $run $bench" ;;
        package) wanted="$wanted $run $package" ;;
        fuzz) wanted="$wanted $run $fuzz" ;;
        *) echo "usage: $0 [run] [test] [bench] [package] [fuzz]" >&2; exit 2 ;;
    esac
done

present=$(dpkg-query -W -f '${Package} ${Status}\n' | sed -n 's/ install ok installed$//p')
missing=
for package in $wanted; do
    case " $missing " in *" $package "*) continue ;; esac
    printf '%s\n' "$present" | grep -qx -- "$package" || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

echo "Installing:$missing"
sudo=
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo > /dev/null || { echo "Run this as root, or install sudo." >&2; exit 1; }
    sudo=sudo
fi
$sudo apt-get update -qq
# shellcheck disable=SC2086 – the list is meant to be split
$sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing
