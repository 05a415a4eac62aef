# Sourced by the shell scripts that need a simulated controller:
#   . sim/start-sim.sh; start_simulator WORK-FOLDER [extra simulator options]
# Starts sim/controller_sim.py on free loopback ports with its files in WORK-FOLDER/controller and
# its output in WORK-FOLDER/simulator.out, waits until it is ready and sets sim_pid, http_port and
# ftp_port. The caller ends it (kill "$sim_pid"), usually from a trap. Returns 1 when it does not start.
start_simulator() {
  local work="$1"; shift
  local here
  here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
  /usr/bin/python3 "$here/controller_sim.py" --ftp-port 0 --http-port 0 --root "$work/controller" "$@" \
    > "$work/simulator.out" 2>&1 &
  sim_pid=$!
  local ready=""
  for _ in $(seq 1 200); do
    ready="$(grep -m1 '^NXRSIM READY' "$work/simulator.out" 2>/dev/null)" && break
    kill -0 "$sim_pid" 2>/dev/null || break
    sleep 0.05
  done
  if [ -z "$ready" ]; then
    cat "$work/simulator.out" >&2
    echo "the controller simulator did not start" >&2
    return 1
  fi
  http_port="$(sed -E 's/.* http=([0-9]+).*/\1/' <<<"$ready")"
  ftp_port="$(sed -E 's/.* ftp=([0-9]+).*/\1/' <<<"$ready")"
}
