#ifndef BREVAN_SIMULATOR_ERRORCODES_H
#define BREVAN_SIMULATOR_ERRORCODES_H

namespace brevan::sim {

/// The codes with which the array answers. The first group is what clients test for; the others follow one another so that
/// each rule has a number of its own. docs/simulator.md lists them all with their texts.
enum ErrorCode : int {
    kDone = 0,
    kNoSession = -401,
    kNotReadableYet = 1077949006,
    kLunAlreadyInLunGroup = 1077936862,
    kSnapshotAlreadyInLunGroup = 1077948997,
    kNotInLunGroup = 1077948996,
    kHostAlreadyInHostGroup = 1077937501,

    kInternal = 1077970001,
    kUnknownOperation = 1077970002,
    kBadHttp = 1077970003,
    kBadBody = 1077970004,
    kBadQuery = 1077970005,
    kBadParameter = 1077970006,
    kMissingParameter = 1077970007,
    kUnknownDevice = 1077970008,
    kTooManyRecords = 1077970009,
    kOverloaded = 1077970010,

    kLoginRefused = 1077970020,
    kTooManySessions = 1077970021,
    kLoginLocked = 1077970022,

    kNameTaken = 1077970030,
    kIdTaken = 1077970031,
    kBadName = 1077970032,

    kUnknownPool = 1077970040,
    kUnknownLun = 1077970041,
    kUnknownSnapshot = 1077970042,
    kUnknownLunGroup = 1077970043,
    kUnknownHost = 1077970044,
    kUnknownHostGroup = 1077970045,
    kUnknownMappingView = 1077970046,
    kUnknownIscsiInitiator = 1077970047,
    kUnknownFcInitiator = 1077970048,
    kUnknownFcPort = 1077970049,
    kUnknownFcoePort = 1077970050,
    kUnknownEthPort = 1077970051,

    kBadCapacity = 1077970060,
    kPoolFull = 1077970061,
    kBadAllocation = 1077970062,
    kVolumeInLunGroup = 1077970063,
    kLunHasSnapshots = 1077970064,
    kTooManyVolumesForHost = 1077970065,

    kLunGroupInView = 1077970070,
    kHostGroupInView = 1077970071,
    kNotInHostGroup = 1077970072,
    kHostInUse = 1077970073,
    kAlreadyInView = 1077970074,
    kViewHasAnother = 1077970075,
    kNotInView = 1077970076,

    kInitiatorBound = 1077970080,
    kInitiatorNotBound = 1077970081,
    kBadChap = 1077970082,
    kWrongOldSecret = 1077970083,

    kExposureFailed = 1077970090,
};

}  // namespace brevan::sim

#endif
