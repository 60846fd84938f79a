// The destructors of the handler interfaces: their tables of virtual functions stand here.
#include <brevan/brevan.h>

CHandler::~CHandler() = default;
CLunHandler::~CLunHandler() = default;
CLunGroupHandler::~CLunGroupHandler() = default;
CSnapshotHandler::~CSnapshotHandler() = default;
CHostHandler::~CHostHandler() = default;
CHostGroupHandler::~CHostGroupHandler() = default;
CMappingViewHandler::~CMappingViewHandler() = default;
CIscsiInitiatorHandler::~CIscsiInitiatorHandler() = default;
CFCInitiatorHandler::~CFCInitiatorHandler() = default;
CFCPortHandler::~CFCPortHandler() = default;
CFCoEPortHandler::~CFCoEPortHandler() = default;
CETHPortHandler::~CETHPortHandler() = default;
CDiskAttachHandler::~CDiskAttachHandler() = default;
CDiskScannerHandler::~CDiskScannerHandler() = default;
