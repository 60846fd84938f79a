#!/bin/bash
# The sudoers file parses, and what sudo reads in it is these two commands and nothing else. How sudo then acts is tried with a real one
# in the kernel host (tests/kernel_host/host-install-test.sh).
set -euo pipefail
PATH=$PATH:/usr/sbin:/sbin
HERE=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/support/checks.sh
source "$HERE/../support/checks.sh"
FILE=$HERE/../../host/sudoers.d/brevan
SCRIPT=/opt/root_tool/common/security_sudo_v3.sh

read_as_json=$(cvtsudoers -f json "$FILE")
values() { sed -n "s/.*\"$1\": \(.*[^ ]\) *}.*/\\1/p" <<<"$read_as_json" | tr '\n' '|'; }

check "it parses" visudo -cf "$FILE"
is "commands" "$(values command)" "\"$SCRIPT do_uprescan\"|\"$SCRIPT ^dev_rescan [a-z]+[0-9a-z]*\$\"|"
is "what is allowed, and under what the defaults stand" "$(values cmndalias)" '"BREVAN_RESCAN"|"BREVAN_RESCAN"|'
is "who may, and as whom" "$(values usergroup)$(values username)" '"brevan"|"root"|'
is "without a password" "$(values authenticate)" "false|"
is "with variables of the caller" "$(values setenv)$(values env_reset)" "false|true|"
endChecks
