#!/usr/bin/env bash
# Velder against the engine alone and against its peers, in one interleaved run on this machine: Velder, a bare
# WebKitGTK window (bench/bare-engine.c, drawing as Velder draws here), GNOME Web (Debian's epiphany-browser)
# and Chromium (Debian's chromium). Each launch has a fresh profile and session bus and opens loopback pages
# whose onload calls back to the server. Two measures, each the median of RUNS launches (default 10), with
# every launch's figures printed:
#   one page:  launch -> the page's load, and the PSS of the browser's whole process tree 2 s after it;
#   ten tabs:  the same ten pages given on the command line: launch -> the last of the ten loads, and PSS.
# Rounds go browser after browser, so a noisy moment of the machine falls on all of them alike.
#
#   bench/compare-browsers.sh                 # under Xvfb when there is no display
#   RUNS=15 BROWSERS="velder bare" bench/compare-browsers.sh
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

if [[ -z "${DISPLAY:-}" && -z "${WAYLAND_DISPLAY:-}" && -z "${VELDER_BENCH_IN_XVFB:-}" ]]; then
  scripts/deps --bench
  export VELDER_BENCH_IN_XVFB=1
  exec xvfb-run -a -s "-screen 0 1600x1000x24" "$0" "$@"
fi

scripts/deps --bench
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DVELDER_TESTS=OFF >/dev/null
cmake --build build/release --target velder >/dev/null

runs=${RUNS:-10}
browsers=(${BROWSERS:-velder bare gnome-web chromium})
work=$(mktemp -d /tmp/velder-compare-XXXXXX)
trap 'kill $(jobs -p) "${SERVER_PID:-}" 2>/dev/null || true; rm -rf "$work" 2>/dev/null || true' EXIT

# shellcheck disable=SC2046
cc -O2 -o "$work/bare-engine" bench/bare-engine.c $(pkg-config --cflags --libs gtk4 webkitgtk-6.0)

# The loopback server: a page that calls back when it has loaded, and a log of the callbacks.
cat >"$work/server.py" <<'PY'
import http.server, sys, time
log = open(sys.argv[1], "a", buffering=1)
PAGE = b"""<!doctype html><html><head><meta charset=utf-8><title>Bench page</title>
<style>body{font:16px sans-serif;margin:40px} .card{border:1px solid #ccc;padding:12px;margin:8px 0}</style></head>
<body onload="fetch('/loaded' + location.search)"><h1>A page to load</h1>
""" + b"".join(b"<div class=card><h2>Section %d</h2><p>Some text of a typical article paragraph, long enough to wrap.</p></div>" % i for i in range(40)) + b"</body></html>"
class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        if self.path.startswith("/loaded"):
            log.write("%d %s\n" % (time.monotonic_ns(), self.path))
            self.send_response(204); self.end_headers(); return
        if self.path.startswith("/page"):
            self.send_response(200)
            self.send_header("Content-Type", "text/html; charset=utf-8")
            self.send_header("Content-Length", str(len(PAGE)))
            self.end_headers(); self.wfile.write(PAGE); return
        self.send_response(404); self.end_headers()
    def log_message(self, *args): pass
server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
print(server.server_address[1], flush=True)
server.serve_forever()
PY
touch "$work/loaded.log"
coproc SERVER { exec python3 "$work/server.py" "$work/loaded.log"; }
read -r port <&"${SERVER[0]}"

now_ns() { python3 -c 'import time; print(time.monotonic_ns())'; }

# Waits until `count` callbacks with `tag` have arrived; prints the time of the last one.
wait_loaded() {
  local tag=$1 count=$2 deadline=$((SECONDS + 90))
  while ((SECONDS < deadline)); do
    local hits
    hits=$(grep -c -- "$tag" "$work/loaded.log" || true)
    if ((hits >= count)); then
      grep -- "$tag" "$work/loaded.log" | tail -1 | cut -d' ' -f1
      return 0
    fi
    sleep 0.02
  done
  echo "timeout waiting for $tag" >&2
  return 1
}

# A process and all its descendants.
tree() {
  local pids=("$1") pid
  while ((${#pids[@]})); do
    pid=${pids[0]}
    pids=("${pids[@]:1}")
    echo "$pid"
    mapfile -t -O "${#pids[@]}" pids < <(ps -o pid= --ppid "$pid" | tr -d ' ')
  done
}

# The PSS of a process tree, in KiB.
tree_pss() {
  local total=0 value pid
  for pid in $(tree "$1"); do
    value=$(awk '/^Pss:/ {print $2}' "/proc/$pid/smaps_rollup" 2>/dev/null || echo 0)
    total=$((total + ${value:-0}))
  done
  echo "$total"
}

launch() { # browser profile urls...
  local browser=$1 profile=$2
  shift 2
  case $browser in
    velder) exec "$root/build/release/src/velder" "$@" ;;
    bare) exec "$work/bare-engine" "$@" ;;
    gnome-web) exec epiphany "$@" ;; # its profile lies in the fresh XDG folders
    chromium) exec chromium --no-sandbox --no-first-run --no-default-browser-check --password-store=basic \
      --user-data-dir="$profile/chromium" "$@" ;;
  esac
}

declare -A times pss
# One launch: measure name, browser, round, number of pages.
measure() {
  local name=$1 browser=$2 run=$3 pages=$4 profile tag urls=() start pid loaded
  profile="$work/$name-$browser-$run"
  mkdir -p "$profile/home" && mkdir -p -m 700 "$profile/run"
  export XDG_DATA_HOME="$profile/data" XDG_CACHE_HOME="$profile/cache" XDG_CONFIG_HOME="$profile/config" \
    HOME="$profile/home" XDG_RUNTIME_DIR="$profile/run"
  eval "$(dbus-launch --sh-syntax)"
  tag="m=$name&b=$browser&r=$run"
  for ((page = 0; page < pages; page++)); do urls+=("http://127.0.0.1:$port/page?$tag&p=$page"); done
  start=$(now_ns)
  (launch "$browser" "$profile" "${urls[@]}") >"$profile/out.log" 2>&1 &
  pid=$!
  if loaded=$(wait_loaded "$tag&" "$pages"); then
    times[$name-$browser]+="$(((loaded - start) / 1000000)) "
    sleep 2
    pss[$name-$browser]+="$(tree_pss "$pid") "
  else
    echo "$browser: $name run $run never loaded; see $profile/out.log" >&2
  fi
  local members
  members=$(tree "$pid")
  kill -TERM "$pid" 2>/dev/null || true
  for ((i = 0; i < 50 && $(kill -0 "$pid" 2>/dev/null && echo 1 || echo 0); i++)); do sleep 0.1; done
  # shellcheck disable=SC2086
  kill -KILL $members 2>/dev/null || true
  wait "$pid" 2>/dev/null || true
  kill "$DBUS_SESSION_BUS_PID" 2>/dev/null || true
}

for ((run = 1; run <= runs; run++)); do
  for browser in "${browsers[@]}"; do
    measure one "$browser" "$run" 1
    measure ten "$browser" "$run" 10
  done
done

median() { tr ' ' '\n' <<<"$1" | grep -v '^$' | sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }
mib() { awk -v k="$1" 'BEGIN {printf "%.1f", k / 1024}'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN {if (b > 0) printf "%.2f", a / b; else print "-"}'; }

printf '\nMedians of %d launches (this machine, %s)\n\n' "$runs" "$(date -u +%Y-%m-%d)"
printf '%-11s %10s %10s %10s %10s\n' "" "1 page ms" "1 page MiB" "10 tabs ms" "10 tabs MiB"
declare -A m
for browser in "${browsers[@]}"; do
  for name in one ten; do
    m[$name-$browser-t]=$(median "${times[$name-$browser]:-0}")
    m[$name-$browser-p]=$(median "${pss[$name-$browser]:-0}")
  done
  printf '%-11s %10s %10s %10s %10s\n' "$browser" "${m[one-$browser-t]}" "$(mib "${m[one-$browser-p]}")" \
    "${m[ten-$browser-t]}" "$(mib "${m[ten-$browser-p]}")"
done
if [[ " ${browsers[*]} " == *" velder "* ]]; then
  printf '\nVelder as a ratio of each (below 1 is Velder ahead)\n'
  for browser in "${browsers[@]}"; do
    [[ $browser == velder ]] && continue
    printf '%-11s %10s %10s %10s %10s\n' "$browser" "$(ratio "${m[one-velder-t]}" "${m[one-$browser-t]}")" \
      "$(ratio "${m[one-velder-p]}" "${m[one-$browser-p]}")" "$(ratio "${m[ten-velder-t]}" "${m[ten-$browser-t]}")" \
      "$(ratio "${m[ten-velder-p]}" "${m[ten-$browser-p]}")"
  done
fi
printf '\nEvery launch (ms; PSS KiB)\n'
for browser in "${browsers[@]}"; do
  for name in one ten; do
    printf '%-11s %-3s %s| %s\n' "$browser" "$name" "${times[$name-$browser]:-}" "${pss[$name-$browser]:-}"
  done
done
