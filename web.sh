#!/usr/bin/env bash
# Builds Karvo Terrain as a web page into build-web/site/ and serves it on
# http://127.0.0.1:8080 (PORT=... for another port). The folder is static:
# copy it to any web server to publish the page.
# Installs the Debian packages that are missing first (with sudo when not root).
set -euo pipefail
cd "$(dirname "$0")"
web/scripts/build.sh
exec node web/scripts/serve.mjs build-web/site "${PORT:-8080}"
