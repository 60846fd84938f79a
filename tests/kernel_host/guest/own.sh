#!/bin/sh
# For a guest whose files were unpacked by an ordinary user of the machine: what sudo insists on, and accounts it can read.
chown -R root:root /etc/sudo* /usr/bin/sudo /usr/lib/sudo /usr/libexec/sudo /opt/root_tool 2>/dev/null
chown root:root /opt
chmod 4755 /usr/bin/sudo
if ! cat /etc/shadow >/dev/null 2>&1; then
    rm -f /etc/shadow
    sed 's/^\([^:]*\):.*/\1:*:19000:0:99999:7:::/' /etc/passwd >/etc/shadow
    chmod 640 /etc/shadow
fi
