#!/bin/sh
# Builds the Debian package into build/package and checks it. Needs no root; installs missing build tools like run.sh.
set -eu
cd "$(dirname "$0")/.."

scripts/bootstrap.sh run package
work=$PWD/build/package
tree=$work/ql240-viewer
rm -rf "$work"
mkdir -p "$tree"
# Copies the working tree, including uncommitted changes, without the build folder.
tar -cf - --exclude=./build --exclude=./.git --exclude=./.cache . | tar -xf - -C "$tree"
cp -r packaging/debian "$tree/debian"

(cd "$tree" && dpkg-buildpackage --build=binary --no-sign)
rm -rf "$tree"

desktop-file-validate packaging/desktop/ql240-viewer.desktop
appstreamcli validate --no-net packaging/desktop/example.ql240.viewer.metainfo.xml
lintian --fail-on error "$work"/ql240-viewer_*.changes
ls "$work"/*.deb
