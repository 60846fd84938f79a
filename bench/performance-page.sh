#!/bin/bash
# Prints, as Markdown, what scripts/bench.sh has measured and on which machine.
#   performance-page.sh FIGURES JUDGED
set -euo pipefail
TOP=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
FIGURES=${1:?what the benchmarks printed} JUDGED=${2:?the figures with ratio and goal}

version() { dpkg-query -W -f '${Version}' "$1" 2>/dev/null || echo "not from a package"; }

machine() {
    echo "Measured on $(date +%F) at revision $(git -C "$TOP" describe --always --dirty 2>/dev/null || echo unknown):" \
        "$(nproc) cores of $(sed -n 's/^model name[[:space:]]*: //p' /proc/cpuinfo | head -n 1)," \
        "$(awk '/^MemTotal/ { printf "%.0f GiB", $2 / 1048576 }' /proc/meminfo), Linux $(uname -r)," \
        "libcurl $(version libcurl4), OpenSSL $(version libssl3), JsonCpp $(version libjsoncpp25), nginx $(version nginx-light);" \
        "load average at the end $(cut -d ' ' -f 1 /proc/loadavg)."
}

table() {
    echo "| What | Measured | Limit of the same run | Unit | Ratio | Goal | Met |"
    echo "|---|---|---|---|---|---|---|"
    awk -F '\t' '{ printf "| %s | %s | %s | %s | %s | %s | %s |\n", $1, $2, $3, $4, $5, $6, ($7 == "yes" ? "yes" : "**no**") }' "$JUDGED"
}

machine | fold -s -w 140 | sed 's/ *$//'
echo
table
echo
sed -n 's/^# //p' "$FIGURES"
