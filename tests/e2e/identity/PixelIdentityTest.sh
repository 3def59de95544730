#!/usr/bin/env bash
# The GL back end's fast path must draw exactly the pixels of its plain path
# (every call in order as it comes). The capture tool writes the same frame
# both ways, at the places the scene benchmark measures and with every option
# that changes how the world is drawn, and the two PNG files must be equal
# byte for byte. Both come from this build, so nothing stored can drift. The
# program runs on a 24-bit depth buffer, where the fast path holds the sky
# back (a 32-bit float one is drawn in order on both). Two cases draw on
# OpenGL ES, the web page's path (wireframe there is drawn as lines).
#
#   PixelIdentityTest.sh CAPTURE OUT_DIR     (run inside the assets folder)
set -u
capture=$1
out=$2
rm -rf "$out"
mkdir -p "$out"

start="--place 1500,5000,1500 --look 45,0"
cases=(
  "start|$start"
  "towers|--place 5000,5000,600 --look 0,0"
  "trees|--place 6210,5000,9610 --look 0,0"
  "shore|--place 11264,900,1434 --look 0,0"
  "waterline|--place 11264,854.3,1920 --step 0.001"
  "underwater|--place 11264,570,1920 --look 0,0"
  "flock|$start --look 45,-89"
  "wireframe|$start --wireframe"
  "multipass|$start --multipass"
  "third|$start --camera third"
  "min-none|$start --min none"
  "min-point|$start --min point"
  "min-anisotropic|$start --min anisotropic --anisotropy 16"
  "mag-none|$start --mag none"
  "mag-point|$start --mag point"
  "mag-anisotropic|$start --mag anisotropic --anisotropy 4"
  "mip-none|$start --mip none"
  "mip-point|$start --mip point"
  "es-start|$start --es"
  "es-wireframe|$start --wireframe --es"
)

failed=0
for c in "${cases[@]}"; do
  name=${c%%|*}
  # shellcheck disable=SC2206
  args=(${c#*|})
  for path in fast plain; do
    flag=()
    [ "$path" = plain ] && flag=(--plain)
    if ! "$capture" --frames 12 --depth24 "${args[@]}" "${flag[@]}" --prefix "$name-$path" --out "$out" \
        >"$out/$name-$path.log" 2>&1; then
      echo "FAILED to capture $name ($path):"
      cat "$out/$name-$path.log"
      failed=1
    fi
  done
  if cmp -s "$out/$name-fast_0012.png" "$out/$name-plain_0012.png"; then
    echo "identical: $name"
  else
    echo "DIFFERENT: $name ($out/$name-fast_0012.png against $out/$name-plain_0012.png)"
    failed=1
  fi
done
[ "$failed" = 0 ] && echo "${#cases[@]} passed, 0 failed"
exit "$failed"
