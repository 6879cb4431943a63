#!/usr/bin/env bash
# check_packages.sh SOURCE BUILD: the packages hold what they should, come and go without a trace, and a host can be
# built against them and run. They are installed into an empty root of their own.
set -euo pipefail
source=$1 build=$2
here=$(dirname "$(readlink -f "$0")")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$work/root
log=$work/log
fail() {
    echo "$1" >&2
    exit 1
}
quietly() { "$@" >"$log" 2>&1 || { cat "$log" >&2 && fail "failed: $*"; }; }

quietly cpack --config "$build/CPackConfig.cmake" -B "$work"
packages=("$work"/*.deb)
[[ ${#packages[@]} -eq 4 ]] || fail "there are not four packages: ${packages[*]}"
lib=usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)

# Files, with what differs from machine to machine and from build to build left out.
for package in "${packages[@]}"; do
    dpkg-deb --fsys-tarfile "$package" | tar -t | sed -E "s|^\./||; s|^$lib/|LIB/|; /\/$/d; /^$/d
        s|[0-9a-f]{2}/[0-9a-f]+\.debug|ID.debug|" | LC_ALL=C sort | sed "s|^|$(dpkg-deb -f "$package" Package): |"
done >"$work/files"
diff "$here/files.txt" "$work/files" || fail "the packages hold other files than tests/package/files.txt says"

# In and out again, with what they need left out: it is on the machine, not in the root.
mkdir -p "$root/var/lib/dpkg/"{updates,info}
touch "$root/var/lib/dpkg/"{status,available}
dpkg_in_root() { quietly dpkg --root="$root" --log=/dev/null --force-not-root --force-depends --force-bad-path "$@"; }
names=(libveltadev libveltadev-dev libveltadev-dbgsym velta-tools)
dpkg_in_root --install "${packages[@]}"
[[ $(dpkg-query --admindir="$root/var/lib/dpkg" -Wf '${db:Status-Status} ') == "installed installed installed installed " ]] ||
    fail "not all packages are installed"
dpkg_in_root --remove "${names[@]}"
dpkg_in_root --purge "${names[@]}"
left=$(cd "$root" && find . -path ./var -prune -o -mindepth 1 -print)
[[ -z $left ]] || fail "left behind after removal: $left"
dpkg_in_root --install "${packages[@]}"

plugin=$root/$lib/veltadev/libveltadev.so
symbols=$(cd "$root/usr/lib/debug/.build-id" && echo */*.debug)
build_id=$(readelf -n "$plugin" | sed -n 's/.*Build ID: //p')
[[ -n $build_id && ${symbols/\//} == "$build_id.debug" ]] || fail "the debug symbols are those of another library"
objcopy --decompress-debug-sections "$root/usr/lib/debug/.build-id/$symbols" "$work/symbols"
! grep -rlF -e "$source" -e "$build" "$root/usr" "$work/symbols" || fail "these files name folders of this machine"

# The programs find the library, and the manual pages and completions know what the programs know.
quietly "$root/usr/bin/velta-host" config SetEventSub 1
"$here/check_pages.sh" "$root"

# Hosts, built as on a machine that has the packages.
cp -r "$root/usr/share/doc/libveltadev-dev/examples" "$work/examples"
quietly cmake -S "$work/examples" -B "$work/found" -DCMAKE_PREFIX_PATH="$root/usr" -DCMAKE_C_FLAGS=-Werror \
    -DCMAKE_CXX_FLAGS=-Werror
grep -q "VeltaDev_DIR:PATH=$root" "$work/found/CMakeCache.txt" || fail "find_package found another VeltaDev"
quietly cmake --build "$work/found"
export PKG_CONFIG_LIBDIR=$root/$lib/pkgconfig PKG_CONFIG_SYSROOT_DIR=$root
read -ra flags < <(pkg-config --cflags velta)
quietly cc -std=c99 -Werror "$work/examples/host.c" "${flags[@]}" -pthread -ldl -o "$work/host"
quietly c++ -std=c++17 -Werror "$work/examples/host.cpp" "${flags[@]}" -pthread -ldl -o "$work/host++"
plugin_of_pc=$(PKG_CONFIG_SYSROOT_DIR='' pkg-config --variable=plugin velta)
[[ $root$plugin_of_pc == "$plugin" ]] || fail "velta.pc tells another path of the plug-in: $plugin_of_pc"
"$here/run_example.sh" "$work/found/velta-example-c" "$plugin" "$root/usr/bin/velta-sim"
