#!/bin/bash -p
# In tests in the place of the rescan script, which stands beside as real.sh: notes when a call begins and ends, waits while it is held, and
# says what it is given to say. ClientProcess.h tells the rest.
FOLDER=/run/rescans
echo "begin $1" >>$FOLDER/calls
while [[ -e $FOLDER/hold-$1 ]]; do sleep 0.05; done
/opt/root_tool/common/real.sh "$@"
status=$?
[[ ! -e $FOLDER/said ]] || echo "$(<$FOLDER/said)"
echo "end $1" >>$FOLDER/calls
exit $status
