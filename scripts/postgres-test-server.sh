#!/usr/bin/env bash
# A private PostgreSQL server for tests and benchmarks: a cluster of its own in DIR, reached
# only through a Unix socket in DIR (no TCP port), every local user trusted, superuser
# "vantrel". As root the server runs as the postgres user, as PostgreSQL requires.
#   postgres-test-server.sh start DIR      creates the cluster if needed, starts it, prints
#                                          the URL of its database "postgres"
#   postgres-test-server.sh stop DIR       stops it (fast: sessions are ended)
#   postgres-test-server.sh crash DIR      stops it at once, as a power cut would
# Set VANTREL_PG_FSYNC=on for a server that syncs to disk (benchmarks); tests run without.
set -euo pipefail
usage() { echo "usage: $0 start|stop|crash DIR" >&2; exit 2; }
(($# == 2)) || usage
action="$1"
dir="$(realpath -m "$2")"
bindir="$(pg_config --bindir 2>/dev/null || true)"
[[ -x "$bindir/initdb" ]] || bindir="$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -1)"
[[ -x "$bindir/initdb" ]] || { echo "$0: no PostgreSQL server programs (install postgresql)" >&2; exit 1; }

as_owner() {
  if [[ $(id -u) -eq 0 ]]; then runuser -u postgres -- "$@"; else "$@"; fi
}

case "$action" in
  start)
    if [[ ! -d "$dir/data" ]]; then
      mkdir -p "$dir"
      [[ $(id -u) -eq 0 ]] && chown postgres: "$dir"
      as_owner "$bindir/initdb" -D "$dir/data" -A trust -U vantrel -E UTF8 --locale=C.UTF-8 \
        --no-sync >"$dir/initdb.log" 2>&1 || { cat "$dir/initdb.log" >&2; exit 1; }
    fi
    fsync="${VANTREL_PG_FSYNC:-off}"
    as_owner "$bindir/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -t 60 \
      -o "-k $dir -c listen_addresses= -c fsync=$fsync -c full_page_writes=$fsync" \
      start >/dev/null || { cat "$dir/server.log" >&2; exit 1; }
    echo "postgresql:///postgres?host=$dir&user=vantrel"
    ;;
  stop | crash)
    mode=fast
    [[ "$action" == crash ]] && mode=immediate
    as_owner "$bindir/pg_ctl" -D "$dir/data" -m "$mode" -w -t 60 stop >/dev/null
    ;;
  *) usage ;;
esac
