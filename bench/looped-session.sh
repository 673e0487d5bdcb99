# For the scripts beside it: a sample session that goes on as long as it is wanted, and what a process uses.
set -euo pipefail
export LC_ALL=C

build=${BUILD:-build/release}
videoid=$build/src/app/videoid
[ -x "$videoid" ] || { echo "$(basename "$0"): no $videoid: build first, or name the build folder in BUILD." >&2; exit 3; }
folder=$(mktemp -d)
trap 'kill "${pid:-}" 2>/dev/null || true; wait 2>/dev/null || true; rm -rf "$folder"' EXIT

# Leaves $folder/camera.mp4 of so many seconds and $folder/reference. Nobody says the text that the flow asks for, so
# that each run ends in a retry.
make_looped_session() {
  "$build/tools/make-session/make-session" samples/straight.json --cache "$build/sessions" --output "$folder/session" >&2
  "$videoid" enroll --front "$folder/session/front.png" --back "$folder/session/back.png" \
    --output "$folder/reference" >/dev/null 2>&1
  local length
  length=$(ffprobe -v error -show_entries format=duration -of csv=p=0 "$folder/session/session.mp4")
  ffmpeg -v error -stream_loop "$(awk "BEGIN { print int($1 / $length) + 1 }")" -i "$folder/session/session.mp4" \
    -c copy "$folder/camera.mp4"
  echo "Seven grey herons stood beside frozen water while evening trains crossed the distant bridge" >"$folder/text"
}

# Starts the flow; its id is in $pid, its run in $folder/run.
start_capture() {
  "$videoid" capture --reference "$folder/reference" --text-file "$folder/text" --camera "$folder/camera.mp4" \
    --output "$folder/run" --on-retry retry --max-retries 1000 "$@" >"$folder/out" 2>"$folder/err" &
  pid=$!
}

# Of the running capture.
resident_mb() { awk '/^VmRSS/ { print int($2 / 1024) }' "/proc/$pid/status" 2>/dev/null; }
peak_mb() { awk '/^VmHWM/ { print int($2 / 1024) }' "/proc/$pid/status" 2>/dev/null; }
descriptors() { find "/proc/$pid/fd" -mindepth 1 2>/dev/null | wc -l; }
cpu_seconds() { awk -v tick="$(getconf CLK_TCK)" '{ sub(/.*\) /, ""); printf "%.1f", ($12 + $13) / tick }' "/proc/$pid/stat" 2>/dev/null; }
is_running() { kill -0 "$pid" 2>/dev/null; }
retries() { { cat "$folder/run/events.jsonl" 2>/dev/null || true; } | grep -c '"name":"retry"' || true; }
