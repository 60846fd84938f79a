#!/bin/bash
# The sudoers file parses. That it lets through these two commands and nothing else is tried with a real sudo in the
# kernel host (tests/kernel_host/host-install-test.sh).
set -euo pipefail
PATH=$PATH:/usr/sbin:/sbin
exec visudo -cf "$(dirname "$0")/../../host/sudoers.d/brevan"
