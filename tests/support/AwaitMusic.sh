# shellcheck shell=bash
# Sourced by the shell tests that stop a running program. The program starts
# its music with its first frame, so the first sound in the file of SDL's disk
# driver (SDL_AUDIODRIVER=disk SDL_DISKAUDIOFILE=FILE) shows that the world is
# built and frames run, however long the start took.
#
# await_music FILE PID: 0 once FILE holds a sound, 1 when PID ended first,
# 2 after two minutes, which only a hang takes.
await_music() {
  local _
  for _ in $(seq 1200); do
    [ -s "$1" ] && [ "$(tr -d '\0' < "$1" | head -c 1 | wc -c)" -eq 1 ] && return 0
    kill -0 "$2" 2> /dev/null || return 1
    sleep 0.1
  done
  return 2
}
