#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need, only those that
# are missing, so that a second run costs nothing. libdxflib-dev serves the
# benchmarks only (a second reader timed beside kaldo in bench/compare.sh).
set -euo pipefail
packages=(cmake ninja-build g++ clang libclang-rt-14-dev libgtest-dev libbenchmark-dev libdxflib-dev
          qt6-base-dev libqt6opengl6-dev qt6-tools-dev qt6-svg-dev python3-ezdxf xvfb xauth
          dpkg-dev lintian man-db librecad poppler-utils zlib1g-dev)
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "Installing: ${missing[*]}"
if [ "$(id -u)" -ne 0 ]; then
    echo "Missing packages (${missing[*]}); run 'make deps' as root." >&2
    exit 1
fi
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends "${missing[@]}"
