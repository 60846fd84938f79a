#!/bin/bash
# host/install.sh and the sudoers entry with a real sudo and an ordinary user. Runs inside the kernel host.
set -euo pipefail
TOP=$(cd "$(dirname "$0")/../.." && pwd)
INSTALL=$TOP/host/install.sh
SCRIPT=/opt/root_tool/common/security_sudo_v3.sh
failures=0
out=/tmp/out

check() {                                    # STATUS PART-OF-OUTPUT WHAT COMMAND...
    local wanted=$1 part=$2 what=$3 status=0
    shift 3
    "$@" >$out 2>&1 </dev/null || status=$?
    if [[ $status == "$wanted" && $(<$out) == *"$part"* ]]; then echo "ok   $what"; return; fi
    echo "FAIL $what: status $status (wanted $wanted, '$part')"
    sed 's/^/     /' $out
    failures=$((failures + 1))
}
asBackup() { setpriv --reuid backup --regid backup --init-groups --inh-caps=-all "$@"; }
rescan() { asBackup sudo -n "$@"; }

rm -rf /opt/root_tool /etc/sudoers.d/brevan
sed -i '/^brevan:/d' /etc/group
check 1 "$SCRIPT is missing" "--check on a bare host" "$INSTALL" --check --user backup
check 1 "there is no user nobody2" "an unknown user" "$INSTALL" --user nobody2
check 1 "must run as root" "install by an ordinary user" asBackup "$INSTALL"
check 0 "installed $SCRIPT" "install" "$INSTALL" --user backup
check 0 "are in place" "--check after it" "$INSTALL" --check --user backup
check 0 "installed" "install again" "$INSTALL" --user backup

check 0 "SCSI hosts scanned" "do_uprescan by the user" rescan "$SCRIPT" do_uprescan
check 5 "no block device sdq" "dev_rescan by the user reaches the script" rescan "$SCRIPT" dev_rescan sdq
check 1 "" "do_uprescan with a further argument" rescan "$SCRIPT" do_uprescan sdq
check 1 "" "dev_rescan without a name" rescan "$SCRIPT" dev_rescan
check 1 "" "dev_rescan with two names" rescan "$SCRIPT" dev_rescan sdq sdr
check 1 "" "dev_rescan with a path" rescan "$SCRIPT" dev_rescan ../sdq
check 1 "" "another subcommand" rescan "$SCRIPT" reboot
check 1 "" "no subcommand" rescan "$SCRIPT"
check 1 "" "another program" rescan /usr/bin/id
check 1 "" "another script in that folder" rescan /opt/root_tool/common/other.sh do_uprescan
check 1 "" "the script in another folder" rescan "$TOP/host/security_sudo_v3.sh" do_uprescan
check 1 "" "as another user than root" rescan -u nobody "$SCRIPT" do_uprescan
check 1 "" "keeping the environment" rescan -E "$SCRIPT" do_uprescan
check 1 "" "setting a variable" rescan BASH_ENV=/tmp/evil "$SCRIPT" do_uprescan
echo 'touch /tmp/evil-ran' >/tmp/evil
check 0 "SCSI hosts scanned" "a hostile environment" \
    asBackup env BASH_ENV=/tmp/evil ENV=/tmp/evil LD_PRELOAD=/tmp/evil.so SHELLOPTS=xtrace BREVAN_ANY=1 /usr/bin/sudo -n "$SCRIPT" do_uprescan
check 1 "" "... has no effect" test -e /tmp/evil-ran

chmod 775 /opt/root_tool
chown backup $SCRIPT
echo '# more' >>$SCRIPT
check 1 "/opt/root_tool can be written by others" "--check with a folder that others may write" "$INSTALL" --check
cp $out /tmp/findings
for part in "$SCRIPT must belong to root" "$SCRIPT differs"; do check 0 "" "... $part" grep -qF "$part" /tmp/findings; done
"$INSTALL" --user backup >/dev/null
check 0 "are in place" "--check after it was installed again" "$INSTALL" --check --user backup
mv /opt/root_tool /opt/elsewhere && ln -s /opt/elsewhere /opt/root_tool
check 1 "/opt/root_tool is a symbolic link" "--check with a link in the path" "$INSTALL" --check
rm /opt/root_tool && mv /opt/elsewhere /opt/root_tool
chmod 777 /opt
check 1 "/opt can be written by others" "--check with an /opt that others may write" "$INSTALL" --check
chmod 755 /opt && chmod 777 /
check 1 "/ can be written by others" "--check with a root folder that others may write" "$INSTALL" --check
chmod 755 / && chown backup /opt/root_tool/common
check 1 "/opt/root_tool/common must belong to root" "--check with a folder of the user's" "$INSTALL" --check
chown root /opt/root_tool/common && chmod 755 /opt/root_tool
check 0 "are in place" "--check with all in order again" "$INSTALL" --check
check 0 "removed" "--uninstall" "$INSTALL" --uninstall
check 1 "is missing" "--check after it" "$INSTALL" --check
check 1 "" "the user may do nothing now" rescan "$SCRIPT" do_uprescan
check 1 "" "no folder left" test -e /opt/root_tool
[[ $failures -eq 0 ]]
