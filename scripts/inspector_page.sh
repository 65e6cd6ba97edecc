#!/usr/bin/env bash
# Builds the page of the call inspector, or runs its tests.
#   scripts/inspector_page.sh build    writes inspector/built/inspector.html and the hash of its sources
#   scripts/inspector_page.sh test     in headless Chromium, with qnvtool and the recorder of QNV_BIN (default:
#                                      build/linux-x64/bin); ends with "N passed, N failed"
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
page=inspector/page
built=inspector/built
log=$page/node_modules/.cache/install.log

# npm fetches what package-lock.json names, and checks it against the hashes there. Nothing of it runs while it is
# installed.
install() {
  command -v node >/dev/null && command -v npm >/dev/null || {
    echo "inspector_page: node and npm are not installed: run scripts/setup.sh check" >&2
    exit 1
  }
  [ ! $page/node_modules/.package-lock.json -nt $page/package-lock.json ] || return 0
  local output
  output=$(cd $page && npm ci --ignore-scripts --no-audit --no-fund 2>&1) || {
    echo "$output" >&2
    echo "inspector_page: npm ci failed (its output is above)" >&2
    exit 1
  }
  mkdir -p "$(dirname "$log")"
  echo "$output" >"$log"
  touch $page/node_modules/.package-lock.json
}

# One hash over everything that the page is made of.
hash_sources() {
  (
    cd $page
    find src index.html package.json package-lock.json tsconfig.json vite.config.ts -type f -print0 | LC_ALL=C sort -z |
      xargs -0 sha256sum | sha256sum | cut -d' ' -f1
  )
}

case ${1-} in
  build)
    install
    (cd $page && npm run --silent build)
    hash_sources >$built/page.sha256
    ;;
  test)
    install
    failed=0
    if [ "$(hash_sources)" = "$(cat $built/page.sha256 2>/dev/null)" ]; then
      echo "  ok      the built page is made of these sources"
    else
      echo "  FAILED  the built page is older than its sources: run scripts/inspector_page.sh build"
      failed=1
    fi
    if scripts/inspector_engine.sh check; then
      echo "  ok      the built engine is made of these sources"
    else
      echo "  FAILED  the built engine is older than its sources"
      failed=$((failed + 1))
    fi
    if (cd $page && node_modules/.bin/tsc --noEmit); then
      echo "  ok      types"
    else
      echo "  FAILED  types (tsc, above)"
      failed=$((failed + 1))
    fi
    if (cd $page && npm run --silent check-format); then
      echo "  ok      format"
    else
      echo "  FAILED  format: run npm run format in $page"
      failed=$((failed + 1))
    fi
    output=$(mktemp)
    trap 'rm -f "$output"' EXIT
    (cd $page && node tests/run.mjs) >"$output" 2>&1 || true
    read -r good _ bad _ < <(tail -n 1 "$output")
    sed '$d' "$output"
    [[ $good =~ ^[0-9]+$ && $bad =~ ^[0-9]+$ ]] || { tail -n 1 "$output"; good=0 bad=1; }
    echo "$((good + 4 - failed)) passed, $((bad + failed)) failed"
    [ $((bad + failed)) -eq 0 ]
    ;;
  *)
    sed -n '2,/^set /{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}" >&2
    exit 2
    ;;
esac
