// SPDX-License-Identifier: Apache-2.0
// The tables of a catalogue.
#pragma once

#include <string_view>

namespace trellant::catalogue {

/// "TrCa", so that `file` and others can tell a catalogue.
inline constexpr int applicationNumber = 0x54724361;

/// Digests are 32 bytes; `equal_audio` is one row, what keeping equal audio once saves, or empty
/// while a build goes on; what a table is of goes with the file that it is of. `names` looks into
/// `named` by words; it is told of a whole shard at once, since every statement that changes it
/// makes it write, and keeps that many bytes before it writes in the midst of one.
inline constexpr std::string_view schemaText = R"sql(
CREATE TABLE files (
    id INTEGER PRIMARY KEY, path TEXT NOT NULL UNIQUE, size INTEGER NOT NULL,
    modified TEXT NOT NULL, program TEXT NOT NULL, status TEXT NOT NULL, message TEXT,
    pronom TEXT, pronom_basis TEXT, sha256 BLOB, container_version TEXT, omf_version TEXT,
    byte_order TEXT, company TEXT, application TEXT, application_version TEXT, start TEXT,
    timecode_rate TEXT, edit_rate TEXT, length_seconds REAL, tracks INTEGER, clips INTEGER,
    unused_media INTEGER, unused_bytes INTEGER, changes INTEGER, scanned TEXT NOT NULL,
    seconds REAL NOT NULL, peak_memory INTEGER);
CREATE TABLE compositions (
    id INTEGER PRIMARY KEY, file INTEGER NOT NULL REFERENCES files ON DELETE CASCADE,
    object INTEGER NOT NULL, name TEXT, mob_id TEXT, is_read INTEGER NOT NULL);
CREATE TABLE sources (
    id INTEGER PRIMARY KEY, file INTEGER NOT NULL REFERENCES files ON DELETE CASCADE,
    name TEXT NOT NULL, mob_id TEXT, state TEXT NOT NULL, clips INTEGER NOT NULL,
    sample_rate REAL NOT NULL, codec TEXT, bit_depth INTEGER, channels INTEGER NOT NULL,
    frames INTEGER, sample_digest BLOB, sample_bytes INTEGER, recorded_path TEXT, path TEXT);
CREATE TABLE losses (
    id INTEGER PRIMARY KEY, file INTEGER NOT NULL REFERENCES files ON DELETE CASCADE,
    kind TEXT NOT NULL, effect TEXT NOT NULL, count INTEGER NOT NULL, sentence TEXT NOT NULL);
CREATE TABLE findings (
    id INTEGER PRIMARY KEY, file INTEGER NOT NULL REFERENCES files ON DELETE CASCADE,
    profile TEXT NOT NULL, rule TEXT NOT NULL, severity TEXT NOT NULL, count INTEGER NOT NULL,
    sentence TEXT NOT NULL);
CREATE TABLE named (
    id INTEGER PRIMARY KEY, file INTEGER NOT NULL REFERENCES files ON DELETE CASCADE,
    kind TEXT NOT NULL, name TEXT NOT NULL);
CREATE TABLE equal_audio (
    sources INTEGER, different INTEGER NOT NULL, bytes INTEGER, saved INTEGER);
CREATE VIRTUAL TABLE names USING fts5(name, content='named', content_rowid='id',
    columnsize=0);
INSERT INTO names(names, rank) VALUES ('hashsize', 33554432);
CREATE INDEX compositions_file ON compositions(file);
CREATE INDEX sources_file ON sources(file);
CREATE INDEX losses_file ON losses(file);
CREATE INDEX findings_file ON findings(file);
CREATE INDEX named_file ON named(file);
)sql";

/// What is looked up by its value, and the sum over all audio. Made at the end of a build, where
/// sorting all values at once takes a fraction of what it takes to find the place of each.
inline constexpr std::string_view indexText = R"sql(
CREATE INDEX IF NOT EXISTS files_status ON files(status) WHERE status <> 'ok';
CREATE INDEX IF NOT EXISTS files_sha256 ON files(sha256, size) WHERE sha256 IS NOT NULL;
CREATE INDEX IF NOT EXISTS files_application ON files(application);
CREATE INDEX IF NOT EXISTS sources_away ON sources(state) WHERE state NOT IN ('embedded', 'located');
CREATE INDEX IF NOT EXISTS sources_rate ON sources(sample_rate, bit_depth);
CREATE INDEX IF NOT EXISTS sources_digest ON sources(sample_digest, sample_bytes)
    WHERE sample_digest IS NOT NULL;
CREATE INDEX IF NOT EXISTS sources_mob ON sources(mob_id);
INSERT INTO equal_audio
    SELECT sum(n), count(*), sum(n * b), sum((n - 1) * b)
    FROM (SELECT count(*) AS n, max(sample_bytes) AS b FROM sources
          WHERE sample_digest IS NOT NULL GROUP BY sample_digest)
    HAVING NOT EXISTS (SELECT 1 FROM equal_audio);
)sql";

}  // namespace trellant::catalogue
