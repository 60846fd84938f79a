-- Everything that the array knows. What the associations tell (exposed, free, member of a group) is never stored.

-- Whose database this is: one row, once there is an array.
CREATE TABLE identity (device_id TEXT NOT NULL);

CREATE TABLE counter (name TEXT PRIMARY KEY, next INTEGER NOT NULL) WITHOUT ROWID;
INSERT INTO counter VALUES ('object', 1), ('volume', 1);

CREATE TABLE pool (
    id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE,
    capacity INTEGER NOT NULL,                        -- sectors
    allocated INTEGER NOT NULL DEFAULT 0,             -- sectors that its LUNs hold
    health INTEGER NOT NULL DEFAULT 1, running INTEGER NOT NULL DEFAULT 2);

CREATE TABLE lun (
    id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE, pool_id INTEGER NOT NULL REFERENCES pool (id),
    description TEXT NOT NULL, alloc_type INTEGER NOT NULL,
    capacity INTEGER NOT NULL, allocated INTEGER NOT NULL, thin_usage INTEGER NOT NULL,
    wwn TEXT NOT NULL UNIQUE, controller TEXT NOT NULL,
    settings TEXT NOT NULL,                           -- JSON: caching and placement as the client gave them
    health INTEGER NOT NULL DEFAULT 1, running INTEGER NOT NULL DEFAULT 2,
    unsettled INTEGER NOT NULL DEFAULT 0);            -- reads that still answer "not readable yet"
CREATE INDEX lun_by_pool ON lun (pool_id);

CREATE TABLE snapshot (
    id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE, lun_id INTEGER NOT NULL REFERENCES lun (id),
    description TEXT NOT NULL, capacity INTEGER NOT NULL, consumed INTEGER NOT NULL DEFAULT 0,
    wwn TEXT NOT NULL UNIQUE, health INTEGER NOT NULL DEFAULT 1, running INTEGER NOT NULL DEFAULT 2);
CREATE INDEX snapshot_by_lun ON snapshot (lun_id);

CREATE TABLE lun_group (
    id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE, description TEXT NOT NULL,
    app_type INTEGER NOT NULL, group_type INTEGER NOT NULL, unsettled INTEGER NOT NULL DEFAULT 0);

CREATE TABLE lun_group_member (
    group_id INTEGER NOT NULL REFERENCES lun_group (id) ON DELETE CASCADE,
    volume_type INTEGER NOT NULL, volume_id INTEGER NOT NULL,
    PRIMARY KEY (group_id, volume_type, volume_id)) WITHOUT ROWID;
CREATE INDEX lun_group_by_member ON lun_group_member (volume_type, volume_id);

CREATE TABLE host (
    id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE, location TEXT NOT NULL, description TEXT NOT NULL,
    operating_system INTEGER NOT NULL, ip TEXT NOT NULL,
    health INTEGER NOT NULL DEFAULT 1, running INTEGER NOT NULL DEFAULT 2, unsettled INTEGER NOT NULL DEFAULT 0);

CREATE TABLE host_group (
    id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE, description TEXT NOT NULL, unsettled INTEGER NOT NULL DEFAULT 0);

CREATE TABLE host_group_member (
    group_id INTEGER NOT NULL REFERENCES host_group (id) ON DELETE CASCADE, host_id INTEGER NOT NULL REFERENCES host (id),
    PRIMARY KEY (group_id, host_id)) WITHOUT ROWID;
CREATE INDEX host_group_by_host ON host_group_member (host_id);

CREATE TABLE mapping_view (
    id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE, description TEXT NOT NULL, in_band INTEGER NOT NULL,
    lun_group_id INTEGER REFERENCES lun_group (id), host_group_id INTEGER REFERENCES host_group (id),
    unsettled INTEGER NOT NULL DEFAULT 0);
CREATE INDEX mapping_view_by_lun_group ON mapping_view (lun_group_id);
CREATE INDEX mapping_view_by_host_group ON mapping_view (host_group_id);

CREATE TABLE iscsi_initiator (
    id TEXT PRIMARY KEY, name TEXT NOT NULL, host_id INTEGER REFERENCES host (id),
    use_chap INTEGER NOT NULL DEFAULT 0, normal_mode TEXT NOT NULL DEFAULT '0', discovery_mode TEXT NOT NULL DEFAULT '0',
    chap_name TEXT NOT NULL DEFAULT '', chap_secret TEXT NOT NULL DEFAULT '',              -- secrets: salt and hash only
    target_chap_name TEXT NOT NULL DEFAULT '', target_chap_secret TEXT NOT NULL DEFAULT '',
    health INTEGER NOT NULL DEFAULT 1, running INTEGER NOT NULL DEFAULT 2) WITHOUT ROWID;
CREATE INDEX iscsi_initiator_by_host ON iscsi_initiator (host_id);

CREATE TABLE fc_initiator (
    id TEXT PRIMARY KEY COLLATE NOCASE,              -- "2100..AB" and "2100..ab" are one port
    name TEXT NOT NULL, host_id INTEGER REFERENCES host (id),
    health INTEGER NOT NULL DEFAULT 1, running INTEGER NOT NULL DEFAULT 2) WITHOUT ROWID;
CREATE INDEX fc_initiator_by_host ON fc_initiator (host_id);

CREATE TABLE port (
    id INTEGER PRIMARY KEY, kind TEXT NOT NULL, name TEXT NOT NULL, location TEXT NOT NULL, logic_type INTEGER NOT NULL,
    details TEXT NOT NULL,                            -- JSON: what only this kind of port has
    health INTEGER NOT NULL DEFAULT 1, running INTEGER NOT NULL DEFAULT 2, UNIQUE (kind, name));

-- The number under which a host sees a volume: given when the first view maps it, free again when the last one stops.
CREATE TABLE lun_number (
    host_id INTEGER NOT NULL, volume_type INTEGER NOT NULL, volume_id INTEGER NOT NULL, number INTEGER NOT NULL,
    PRIMARY KEY (host_id, volume_type, volume_id), UNIQUE (host_id, number)) WITHOUT ROWID;
CREATE INDEX lun_number_by_volume ON lun_number (volume_type, volume_id);

CREATE VIEW volume AS
    SELECT 11 AS type, id, wwn, capacity FROM lun UNION ALL SELECT 27 AS type, id, wwn, capacity FROM snapshot;

-- Which host a volume is mapped to: host -> host groups -> mapping views -> LUN group -> volumes. A row for each way.
CREATE VIEW host_volume AS
    SELECT h.host_id, m.volume_type, m.volume_id
    FROM host_group_member h
    JOIN mapping_view v ON v.host_group_id = h.group_id
    JOIN lun_group_member m ON m.group_id = v.lun_group_id;
