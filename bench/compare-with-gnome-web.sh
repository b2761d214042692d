#!/usr/bin/env bash
# Starts Velder and GNOME Web (Debian's epiphany-browser, the GTK + WebKitGTK browser) the same way, each with
# a fresh profile and session bus, on a loopback page whose onload calls back to the server, and reports side
# by side: launch -> first page loaded (median of RUNS, default 5), and the proportional memory (PSS) of each
# browser's whole process tree after that page and after ten tabs of it.
#
#   bench/compare-with-gnome-web.sh            # under Xvfb when there is no display
#   RUNS=9 bench/compare-with-gnome-web.sh
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

runs=${RUNS:-5}
work=$(mktemp -d /tmp/velder-compare-XXXXXX)
trap 'kill $(jobs -p) "${SERVER_PID:-}" 2>/dev/null || true; rm -rf "$work" 2>/dev/null || true' EXIT

# The loopback server: a page that calls back when it has loaded, and a log of the callbacks.
cat >"$work/server.py" <<'EOF'
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
EOF
touch "$work/loaded.log"
coproc SERVER { python3 "$work/server.py" "$work/loaded.log"; }
read -r port <&"${SERVER[0]}"

now_ns() { python3 -c 'import time; print(time.monotonic_ns())'; }

# Waits until `count` callbacks with `tag` have arrived; prints the time of the last one.
wait_loaded() {
  local tag=$1 count=$2 deadline=$((SECONDS + 60))
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

# The PSS of a process and all its descendants, in KiB.
tree_pss() {
  local pids=("$1") all=() pid
  while ((${#pids[@]})); do
    pid=${pids[0]}
    pids=("${pids[@]:1}")
    all+=("$pid")
    mapfile -t -O "${#pids[@]}" pids < <(ps -o pid= --ppid "$pid" | tr -d ' ')
  done
  local total=0 value
  for pid in "${all[@]}"; do
    value=$(awk '/^Pss:/ {print $2}' "/proc/$pid/smaps_rollup" 2>/dev/null || echo 0)
    total=$((total + ${value:-0}))
  done
  echo "$total"
}

launch() { # browser profile url
  case $1 in
    velder) "$root/build/release/src/velder" "$3" ;;
    gnome-web) epiphany "$3" ;; # its default profile lies in the fresh XDG folders
  esac
}

declare -A times first_pss ten_pss
for browser in ${BROWSERS:-velder gnome-web}; do
  for ((run = 1; run <= runs; run++)); do
    profile="$work/$browser-$run"
    mkdir -p "$profile/home"
    mkdir -p -m 700 "$profile/run"
    export XDG_DATA_HOME="$profile/data" XDG_CACHE_HOME="$profile/cache" XDG_CONFIG_HOME="$profile/config" \
      HOME="$profile/home" XDG_RUNTIME_DIR="$profile/run"
    eval "$(dbus-launch --sh-syntax)"
    tag="b=$browser&r=$run"
    start=$(now_ns)
    launch "$browser" "$profile" "http://127.0.0.1:$port/page?$tag&t=0" >"$profile/out.log" 2>&1 &
    pid=$!
    loaded=$(wait_loaded "$tag&t=0" 1)
    times[$browser]+="$(((loaded - start) / 1000000)) "
    if ((run == 1)); then
      sleep 2
      first_pss[$browser]=$(tree_pss "$pid")
      for ((tab = 1; tab < 10; tab++)); do
        launch "$browser" "$profile" "http://127.0.0.1:$port/page?$tag&t=$tab" >>"$profile/out.log" 2>&1 || true
      done
      wait_loaded "$tag&t=" 10 >/dev/null
      sleep 3
      ten_pss[$browser]=$(tree_pss "$pid")
    fi
    kill -TERM "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
    kill "$DBUS_SESSION_BUS_PID" 2>/dev/null || true
  done
done

median() { tr ' ' '\n' <<<"$1" | grep -v '^$' | sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }
mib() { awk -v k="$1" 'BEGIN {printf "%.1f", k / 1024}'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN {printf "%.2f", a / b}'; }

if [[ -n "${BROWSERS:-}" ]]; then
  for browser in $BROWSERS; do
    printf '%s: median %s ms, PSS first page %s MiB, ten tabs %s MiB (runs: %s)\n' "$browser" \
      "$(median "${times[$browser]}")" "$(mib "${first_pss[$browser]}")" "$(mib "${ten_pss[$browser]}")" "${times[$browser]}"
  done
  exit 0
fi
v_time=$(median "${times[velder]}")
g_time=$(median "${times[gnome-web]}")
printf '\n%-38s %12s %12s %10s\n' "" "Velder" "GNOME Web" "ratio"
printf '%-38s %12s %12s %10s\n' "launch -> first page loaded, median ms" "$v_time" "$g_time" "$(ratio "$v_time" "$g_time")"
printf '%-38s %12s %12s %10s\n' "PSS after the first page, MiB" "$(mib "${first_pss[velder]}")" \
  "$(mib "${first_pss[gnome-web]}")" "$(ratio "${first_pss[velder]}" "${first_pss[gnome-web]}")"
printf '%-38s %12s %12s %10s\n' "PSS after ten tabs, MiB" "$(mib "${ten_pss[velder]}")" \
  "$(mib "${ten_pss[gnome-web]}")" "$(ratio "${ten_pss[velder]}" "${ten_pss[gnome-web]}")"
printf '\nruns (ms): Velder %s| GNOME Web %s\n' "${times[velder]}" "${times[gnome-web]}"
