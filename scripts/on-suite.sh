#!/usr/bin/env bash
# Builds and tests the working tree on a bare Debian: on-suite.sh SUITE [MAKE TARGET...], where the
# targets are "test demo" unless named. A new system is made below QUORVANE_SUITES (/var/tmp/quorvane)
# for every run and removed after it (QUORVANE_SUITE_KEEP=1 keeps it, and uses one that was kept).
# Its /tmp is a file system of its own, as newer systems have it. Needs root and debootstrap;
# QUORVANE_MIRROR is the mirror, unless debootstrap's own will do.
set -euo pipefail
cd "$(dirname "$0")/.."
suite=${1:?on-suite.sh SUITE [TARGET...]}
shift
[ $# -gt 0 ] || set -- test demo
root=${QUORVANE_SUITES:-/var/tmp/quorvane}/$suite
[ "$(id -u)" -eq 0 ] || { echo 'on-suite.sh needs root' >&2; exit 1; }
command -v debootstrap >/dev/null || { echo 'on-suite.sh needs debootstrap' >&2; exit 1; }

# Mounts end with the processes that may see them, however the run ends.
if [ -z "${QUORVANE_SUITE_MOUNTS:-}" ]; then
  QUORVANE_SUITE_MOUNTS=1 unshare --mount --propagation private -- "$0" "$suite" "$@" && status=0 || status=$?
  [ -n "${QUORVANE_SUITE_KEEP:-}" ] || rm -rf --one-file-system "$root"
  exit "$status"
fi

told() { # WHAT COMMAND...: runs it and tells how long it took
  local what=$1 begin=$SECONDS
  shift
  "$@" || { echo "$suite: $what failed after $((SECONDS - begin)) s" >&2; return 1; }
  echo "$suite: $what took $((SECONDS - begin)) s"
}
make_system() {
  debootstrap --variant=minbase "$suite" "$root" ${QUORVANE_MIRROR:-} >"$root.log" 2>&1 || { tail "$root.log" >&2; return 1; }
}
inside() { # USER COMMAND...
  local user=$1
  shift
  chroot "$root" runuser -u "$user" -- env -i HOME="/home/$user" LANG=C.UTF-8 USER="$user" \
    PATH=/usr/sbin:/usr/bin:/sbin:/bin CMAKE_BUILD_PARALLEL_LEVEL="${CMAKE_BUILD_PARALLEL_LEVEL:-2}" "$@"
}

[ -z "${QUORVANE_SUITE_KEEP:-}" ] || [ ! -e "$root/.made" ] || kept=1
if [ -z "${kept:-}" ]; then
  rm -rf --one-file-system "$root"
  mkdir -p "$root"
  told 'making the system' make_system
  chroot "$root" useradd --create-home person
  touch "$root/.made"
fi
mount -t proc proc "$root/proc"
mount --rbind /dev "$root/dev"
mount -t tmpfs -o mode=1777 tmpfs "$root/tmp"

source=$root/home/person/quorvane
rm -rf "$source"
mkdir -p "$source"
git ls-files -z --cached --others --exclude-standard | tar -c --null -T - | tar -x -C "$source"
chroot "$root" chown -R person: /home/person
told 'installing packages' inside root sh -c 'cd /home/person/quorvane && scripts/setup.sh build test run demo'
for target in "$@"; do
  told "make $target" inside person make -C /home/person/quorvane "$target"
done
