#!/usr/bin/env bash
# Builds the Debian package from a configured build directory, checks its files and control
# fields, installs it with apt into a fresh Debian 12 root and runs the installed programs
# there. Needs root (debootstrap, chroot, mount) and Debian's mirror.
#
#   tests/package/deb_test.sh BUILD_DIR
#
# The fresh root is made once with debootstrap and kept as build/deb-test/bookworm-minbase.tar
# (about 2 minutes the first time); later runs unpack it (seconds). Remove that file to
# start from a new debootstrap. DEB_TEST_MIRROR overrides the mirror; DEB_TEST_ON_DISK=1
# and DEB_TEST_BUILD_HOST=1 are described where they act.
set -euo pipefail

if (($# != 1)); then
  echo "usage: $0 BUILD_DIR" >&2
  exit 2
fi
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
repo="$(cd "$here/../.." && pwd)"
build="$(cd "$1" && pwd)"
mirror="${DEB_TEST_MIRROR:-http://deb.debian.org/debian}"
cache="$repo/build/deb-test"
root="$cache/root"
tarball="$cache/bookworm-minbase.tar"
started=$SECONDS

step() { echo "== [$((SECONDS - started))s] $*"; }
die() {
  echo "DEB TEST FAILED: $*" >&2
  exit 1
}

[[ $(id -u) -eq 0 ]] || die "needs root (debootstrap, chroot and mount)"
for tool in cmake cpack dpkg-deb dpkg-shlibdeps debootstrap chroot man; do
  command -v "$tool" >/dev/null ||
    die "$tool is missing (bash scripts/install-deps.sh installs scripts/packages.txt)"
done
[[ -f "$build/CMakeCache.txt" ]] || die "$build is not a configured build directory"

# ---------------------------------------------------------------------------------------
step "building and packaging $build"
cmake --build "$build" >/dev/null || die "the build of $build fails"
rm -f "$build"/vantrel_*.deb
(cd "$build" && cpack -G DEB >"$build/cpack.log" 2>&1) || die "cpack fails, see $build/cpack.log"
debs=("$build"/vantrel_*.deb)
[[ -f "${debs[0]}" && ${#debs[@]} -eq 1 ]] || die "cpack made no single vantrel_*.deb in $build"
deb="${debs[0]}"
echo "$deb"

# ---------------------------------------------------------------------------------------
step "checking the package's files and fields"
failures=0
fail() {
  echo "FAIL: $*" >&2
  failures=$((failures + 1))
}
contents="$(dpkg-deb -c "$deb" | awk '{ print $6 }')"
# The programs, the manual pages, the example description, the changelog and the copyright
# file are checked below where they are used; the headers, after this list.
for path in ./usr/lib/libvantrel{,_hosts,_xlsx,_history,_postgres,_modbus,_qt}.a \
  ./usr/lib/cmake/Vantrel/Vantrel{Config,ConfigVersion,Targets}.cmake \
  ./usr/lib/cmake/Vantrel/Vantrel{Xlsx,History,Postgres,Modbus,Qt}Targets.cmake \
  ./usr/share/vantrel/examples/pumps_{symbols.sym,controller.ini} ./usr/share/doc/vantrel/{README.md,LICENSE}; do
  grep -qxF -- "$path" <<<"$contents" || fail "the package has no $path"
done
# Every public header of the source tree is in the package.
while IFS= read -r header; do
  grep -qxF -- "./usr/include/$header" <<<"$contents" || fail "the package has no /usr/include/$header"
done < <(cd "$repo/include" && find vantrel -name '*.h'; cd "$repo/qt/include" && find vantrel -name '*.h')

field() { dpkg-deb -f "$deb" "$1"; }
version="$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")"
[[ "$(field Package)" == vantrel ]] || fail "Package is '$(field Package)', not vantrel"
[[ -n "$version" && "$(field Version)" == "$version" ]] ||
  fail "Version is '$(field Version)', the project's is '$version'"
for name in Maintainer Section Description Architecture; do
  [[ -n "$(field "$name")" ]] || fail "the $name field is empty"
done
# names_in FIELD: the package names of a relation field, one a line.
names_in() { field "$1" | sed 's/[,|]/\n/g' | awk 'NF { print $1 }'; }
depends="$(names_in Depends)"
# libxlsxwriter's package name carries its soname version (libxlsxwriter4 in Debian 12).
for library in libqt6core6 libqt6gui6 libqt6widgets6 libqt6charts6 libmodbus5 'libxlsxwriter[0-9]+' \
  libsqlite3-0 libpq5 'libstdc\+\+6'; do
  grep -qxE -- "$library" <<<"$depends" || fail "Depends does not name $library: $(field Depends)"
done
suggests="$(names_in Suggests)"
for dev in libmodbus-dev libxlsxwriter-dev zlib1g-dev libsqlite3-dev libpq-dev qt6-base-dev qt6-charts-dev \
  pkg-config cmake g++; do
  grep -qxF -- "$dev" <<<"$suggests" || fail "Suggests does not name $dev: $(field Suggests)"
done
# The changelog in the package parses and names the package's version.
changelog_version="$(dpkg-deb --fsys-tarfile "$deb" | tar -xOf - ./usr/share/doc/vantrel/changelog.gz |
  zcat | dpkg-parsechangelog -l - -S Version 2>&1)" || true
[[ "$changelog_version" == "$version" ]] ||
  fail "the packaged changelog gives version '$changelog_version', the package is '$version'"
dpkg-deb --fsys-tarfile "$deb" | tar -xOf - ./usr/share/doc/vantrel/copyright |
  grep -qx "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/" ||
  fail "the packaged copyright file is not in Debian's machine-readable format"
((failures == 0)) || die "$failures problems with the package's files and fields"
dpkg-deb -f "$deb"

# ---------------------------------------------------------------------------------------
mounted=()
cleanup() {  # unmounts in the reverse order of mounting
  local i
  for ((i = ${#mounted[@]} - 1; i >= 0; --i)); do umount -l "${mounted[i]}" 2>/dev/null || true; done
}
trap cleanup EXIT

mkdir -p "$cache"
if [[ ! -f "$tarball" ]]; then
  step "making a fresh Debian 12 root with debootstrap (kept as $tarball)"
  fresh="$cache/debootstrap"
  rm -rf --one-file-system "$fresh"
  debootstrap --variant=minbase bookworm "$fresh" "$mirror" >"$cache/debootstrap.log" 2>&1 ||
    die "debootstrap fails, see $cache/debootstrap.log"
  rm -rf "$fresh"/var/cache/apt/archives/*.deb
  tar -C "$fresh" -cf "$tarball.part" . || die "cannot write $tarball"
  mv "$tarball.part" "$tarball"
  rm -rf --one-file-system "$fresh"
fi

# The root lives in memory when there is room: writing it and throwing it away cost
# nothing then, where removing some 30000 files from a busy disk takes a minute. With
# DEB_TEST_ON_DISK=1 it stays on disk after the run, for a look inside.
step "unpacking the fresh root in $root"
if mountpoint -q "$root/proc"; then umount -l "$root/proc"; fi
if mountpoint -q "$root"; then umount -l "$root"; fi
rm -rf --one-file-system "$root"
mkdir -p "$root"
available_kb="$(awk '/^MemAvailable:/ { print $2 }' /proc/meminfo)"
if [[ "${DEB_TEST_ON_DISK:-0}" != 1 ]] && ((available_kb > 4 * 1024 * 1024)); then
  mount -t tmpfs -o size=3g,mode=0755 vantrel-deb-test "$root" || die "cannot mount a tmpfs on $root"
  mounted+=("$root")
fi
tar -C "$root" -xf "$tarball" || die "cannot unpack $tarball"
cp /etc/resolv.conf "$root/etc/resolv.conf" 2>/dev/null || true
mount -t proc proc "$root/proc" || die "cannot mount /proc in $root"
mounted+=("$root/proc")
cp "$deb" "$root/tmp/"
in_root() { chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root \
  LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }

step "apt-get install ./$(basename "$deb") in the fresh root"
# The packages downloaded by an earlier run are offered again, so that only what changed on
# the mirror is fetched.
mkdir -p "$cache/archives"
find "$cache/archives" -name '*.deb' -exec cp -t "$root/var/cache/apt/archives/" {} +
in_root apt-get update >"$cache/apt.log" 2>&1 || die "apt-get update fails in $root, see $cache/apt.log"
in_root sh -c "cd /tmp && apt-get install -y -o Dpkg::Options::=--force-unsafe-io \
  ./$(basename "$deb")" >>"$cache/apt.log" 2>&1 ||
  die "apt-get install of the package fails, see $cache/apt.log"
grep -E "^(Need to get|After this operation)" "$cache/apt.log" || true
save_archives() {  # keeps what apt fetched for the next run
  in_root apt-get autoclean >/dev/null 2>&1 || true
  find "$root/var/cache/apt/archives" -maxdepth 1 -name '*.deb' -exec cp -ut "$cache/archives/" {} +
}
save_archives

# ---------------------------------------------------------------------------------------
step "running the installed programs"
out="$(cd / && in_root sh -c 'cd /tmp && timeout 120 vantrel run --records 5' 2>"$cache/run.err")" ||
  die "vantrel run --records 5 fails in the fresh root: $(cat "$cache/run.err")"
mapfile -t lines <<<"$out"
[[ ${#lines[@]} -eq 6 ]] ||
  die "vantrel run --records 5 printed ${#lines[@]} lines, not a header and 5 rows:
$out"
header_cells="$(awk -F'\t' '{ print NF }' <<<"${lines[0]}")"
((header_cells > 1)) || die "vantrel run's first line is no header of columns: ${lines[0]}"
for row in "${lines[@]:1}"; do
  [[ "$(awk -F'\t' '{ print NF }' <<<"$row")" == "$header_cells" ]] ||
    die "a row has not the header's $header_cells cells: $row"
done
printf '%s\n' "$out"

check_out="$(in_root vantrel check /usr/share/vantrel/examples/PMP1_pumps.vtld 2>&1)" ||
  die "vantrel check of the installed example fails: $check_out"
grep -q "PMP1" <<<"$check_out" || die "vantrel check does not show the example's key PMP1: $check_out"
echo "vantrel check /usr/share/vantrel/examples/PMP1_pumps.vtld: $(wc -l <<<"$check_out") lines"

# The viewer runs without a display on Qt's offscreen platform and draws its window.
in_root sh -c 'cd /tmp && QT_QPA_PLATFORM=offscreen timeout 120 vantrel-viewer \
  --screenshot /tmp/viewer.png --after-records 3' >"$cache/viewer.log" 2>&1 ||
  die "vantrel-viewer --screenshot fails in the fresh root, see $cache/viewer.log"
[[ "$(head -c 4 "$root/tmp/viewer.png" | od -An -c | tr -d ' ')" == '211PNG' ]] ||
  die "vantrel-viewer wrote no PNG picture"
echo "vantrel-viewer drew $(stat -c %s "$root/tmp/viewer.png") bytes of PNG"

step "checking the installed manual pages"
zcat "$root/usr/share/man/man1/vantrel.1.gz" | grep -qE '^\.TH VANTREL "?1"? ' ||
  die "the installed vantrel.1.gz is no manual page"
bash "$here/check_manual.sh" "$root/usr/share/man/man1/vantrel.1.gz" chroot "$root" vantrel 2>&1 ||
  die "the installed manual page vantrel(1) misses subcommands or options"
bash "$here/check_manual.sh" "$root/usr/share/man/man1/vantrel-viewer.1.gz" \
  chroot "$root" env QT_QPA_PLATFORM=offscreen vantrel-viewer 2>&1 || die "the installed manual page vantrel-viewer(1) misses options"

# With DEB_TEST_BUILD_HOST=1: what the package suggests is enough to build host projects
# against the installed CMake package (tests/package: the core, the virtual controller and
# the .xlsx export). Off by default: it fetches a compiler and Qt's -dev packages.
if [[ "${DEB_TEST_BUILD_HOST:-0}" == 1 ]]; then
  step "building tests/package against the installed package with what it suggests"
  mapfile -t suggested < <(names_in Suggests)
  in_root apt-get install -y -o Dpkg::Options::=--force-unsafe-io "${suggested[@]}" \
    >"$cache/apt-suggests.log" 2>&1 ||
    die "apt-get install of the suggested packages fails, see $cache/apt-suggests.log"
  save_archives
  rm -rf "$root/tmp/consumer"
  cp -r "$here" "$root/tmp/consumer"
  in_root sh -c 'cmake -S /tmp/consumer -B /tmp/consumer/build && cmake --build /tmp/consumer/build &&
    ctest --test-dir /tmp/consumer/build --output-on-failure' >"$cache/host-build.log" 2>&1 ||
    die "the host projects do not build or run against the installed package, see $cache/host-build.log"
  tail -n 3 "$cache/host-build.log"
fi

step "all package checks passed in $((SECONDS - started)) s"
