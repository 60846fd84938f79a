#ifndef BREVAN_DISKATTACHHANDLER_H
#define BREVAN_DISKATTACHHANDLER_H

#include <brevan/Handler.h>

#include <string>

/// Makes one volume visible to this host through iSCSI, and takes it away again. Works through the other handlers of the
/// same device manager. See CHandler for what holds for every operation, and mind these deviations:
///   - Only empty arguments throw PlimAPIException. Every failure on the array ends the operation with result 0, like
///     success, and with its usual closing log lines: ask brevan::lastFailure(), or let the scan that follows tell
///     (DiskScannerHandler.h). Such an operation has two records, one with code 1 and the closing one with code 0.
///   - The leave line comes before the closing record.
///   - An attach takes about 15 requests, a detach some for each group and view on its way: it blocks for all of them, and
///     for the pauses of what is tried again.
///   - What was made before a failure stays on the array, save a mapping view that could not be filled.
///   - Objects are named after the current second ("host_1700000000"), and the array refuses a name that is taken: begin
///     each attach in a new second.
class BREVAN_API CDiskAttachHandler : public CHandler {
public:
    ~CDiskAttachHandler() override;

    /// Exposes a LUN to the host of an iSCSI initiator (its ID on the array, the IQN). An initiator without a host gets a
    /// new one, which records `hostIP`; then a LUN group with the LUN, a host group with the host and a mapping view that
    /// joins them are made. 0: ran to its end (see above), 1: the LUN is already visible to that host, nothing was made; an
    /// error line and a record with code 1, no leave line. A LUN that could not be put into its group is no end: the rest
    /// is made with an empty group. Throws "lunID is empty! ", "iscsiInitiatorID is empty! ".
    virtual int attachLunToHost(const std::string& lunID, const std::string& iscsiInitiatorID,
                                const std::string& hostIP) = 0;

    /// Takes a LUN out of the LUN groups that the initiator's host reaches through its host groups and mapping views; with
    /// the initiator ID "0" out of every LUN group that holds it. A LUN group that becomes empty is unhooked from its views
    /// and deleted; hosts, host groups, views and the initiator's binding stay. Always 0. Where there is nothing to detach
    /// from (no LUN group holds the LUN; the initiator has no host, or its host no view) it writes an error line and a
    /// record with code 1, no leave line. May be repeated. Throws "lunID is empty! ", "iscsiInitiatorID is empty! ".
    virtual int detachLunFromHost(const std::string& lunID, const std::string& iscsiInitiatorID) = 0;

    /// The same as for a LUN, and -1: the snapshot could not be put into its new LUN group; no view was made, and neither
    /// leave line nor record is written. Throws "snapshotID is empty! ", "iscsiInitiatorID is empty! ".
    virtual int attachSnapshotToHost(const std::string& snapshotID, const std::string& iscsiInitiatorID,
                                     const std::string& hostIP) = 0;

    /// The same as for a LUN. Throws "snapshotID is empty! ", "iscsiInitiatorID is empty! ".
    virtual int detachSnapshotFromHost(const std::string& snapshotID, const std::string& iscsiInitiatorID) = 0;
};

#endif
