// The definitions a company server holds, version 1: the tables and the
// functions no later version replaces. Each version builds on the one before
// and a new server runs them all; the functions that read and write records
// for a person come with version 2, which asks who is asking. Everything
// belongs to trestle_owner, which cannot log in; seats reach the rows only
// through functions that run as their owner and take every value as a parameter.
namespace ServerSchemaSQL {

extern const char kRoles[];
extern const char kDefinitions[];
extern const char kGrants[];

const char kRoles[] = R"SQL(
DO $$
BEGIN
  IF NOT EXISTS (SELECT 1 FROM pg_roles WHERE rolname = 'trestle_owner') THEN
    CREATE ROLE trestle_owner NOLOGIN;
  END IF;
  IF NOT EXISTS (SELECT 1 FROM pg_roles WHERE rolname = 'trestle_member') THEN
    CREATE ROLE trestle_member NOLOGIN;
  END IF;
END
$$;
)SQL";

const char kDefinitions[] = R"SQL(
CREATE SCHEMA trestle AUTHORIZATION trestle_owner;
SET ROLE trestle_owner;

CREATE TABLE trestle.meta (key text PRIMARY KEY, value text NOT NULL);

-- One increasing position for every accepted change of a record or a file.
CREATE SEQUENCE trestle.positions;

CREATE TABLE trestle.recs (
  id text PRIMARY KEY,
  company text NOT NULL,
  kind text NOT NULL,
  project text NOT NULL DEFAULT '',
  parent text NOT NULL DEFAULT '',
  created double precision NOT NULL,
  updated double precision NOT NULL,
  f jsonb NOT NULL DEFAULT '{}',
  version bigint NOT NULL,
  pos bigint NOT NULL,
  deleted boolean NOT NULL DEFAULT false,
  changed_by text NOT NULL,
  changed_at timestamptz NOT NULL
);
CREATE INDEX recs_pos ON trestle.recs (pos);
CREATE INDEX recs_numbered ON trestle.recs (company, kind, project) WHERE NOT deleted;

CREATE TABLE trestle.numbered (kind text PRIMARY KEY);

CREATE TABLE trestle.logins (
  login text PRIMARY KEY,
  company text NOT NULL,
  member text NOT NULL,
  disabled boolean NOT NULL DEFAULT false
);

CREATE TABLE trestle.notices (
  id bigserial PRIMARY KEY,
  for_login text NOT NULL,
  rec text NOT NULL,
  field text NOT NULL,
  replaced text NOT NULL,
  kept text NOT NULL,
  by_login text NOT NULL,
  at timestamptz NOT NULL
);
CREATE INDEX notices_for ON trestle.notices (for_login, id);

-- Stored files by their contents: the same bytes are kept once.
CREATE TABLE trestle.blobs (sha256 text PRIMARY KEY, data bytea NOT NULL);
CREATE TABLE trestle.files (
  company text NOT NULL,
  name text NOT NULL,
  sha256 text NOT NULL REFERENCES trestle.blobs,
  pos bigint NOT NULL,
  changed_by text NOT NULL,
  changed_at timestamptz NOT NULL,
  PRIMARY KEY (company, name)
);
CREATE INDEX files_pos ON trestle.files (pos);

-- Writers take positions one at a time and commit before the next takes one,
-- so a reader that has seen position n has seen every position below it.
CREATE FUNCTION trestle.take_position() RETURNS bigint LANGUAGE plpgsql AS $$
BEGIN
  PERFORM pg_advisory_xact_lock(2063514631);
  RETURN nextval('trestle.positions');
END $$;

-- A wake-up for listening seats, sent by the server after commit; never the record.
CREATE FUNCTION trestle.wake() RETURNS trigger LANGUAGE plpgsql AS $$
BEGIN
  PERFORM pg_notify('trestle', '');
  RETURN NULL;
END $$;
CREATE TRIGGER recs_wake AFTER INSERT OR UPDATE ON trestle.recs FOR EACH STATEMENT EXECUTE FUNCTION trestle.wake();
CREATE TRIGGER files_wake AFTER INSERT OR UPDATE ON trestle.files FOR EACH STATEMENT EXECUTE FUNCTION trestle.wake();

CREATE FUNCTION trestle.server_info(OUT schema_version integer, OUT server_id text, OUT newest bigint,
                                    OUT server_time timestamptz)
LANGUAGE sql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
  SELECT (SELECT value::integer FROM trestle.meta WHERE key = 'schema_version'),
         (SELECT value FROM trestle.meta WHERE key = 'server_id'),
         (SELECT coalesce(max(pos), 0) FROM trestle.recs),
         now()
$$;

CREATE FUNCTION trestle.login_names() RETURNS TABLE (login text, member text)
LANGUAGE sql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
  SELECT l.login, l.member FROM trestle.logins l
$$;

-- The record in the seat's own stored form, so a seat reads it as it reads its file.
CREATE FUNCTION trestle.rec_json(r trestle.recs) RETURNS text LANGUAGE sql IMMUTABLE AS $$
  SELECT json_build_object('id', r.id, 'kind', r.kind, 'company', r.company, 'project', r.project,
                           'parent', r.parent, 'created', r.created, 'updated', r.updated, 'f', r.f)::text
$$;

-- Tells `p_for` that a value of theirs was replaced by a later save.
CREATE FUNCTION trestle.add_notice(p_for text, p_rec text, p_field text, p_replaced text, p_kept text)
RETURNS void LANGUAGE sql SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
  INSERT INTO trestle.notices (for_login, rec, field, replaced, kept, by_login, at)
  VALUES (p_for, p_rec, p_field, p_replaced, p_kept, session_user, now())
$$;

CREATE FUNCTION trestle.has_blob(p_sha text) RETURNS boolean
LANGUAGE sql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
  SELECT EXISTS (SELECT 1 FROM trestle.blobs b WHERE b.sha256 = p_sha)
$$;

-- Keeps a file's bytes under their own SHA-256; bytes that do not match the name are refused.
CREATE FUNCTION trestle.put_blob(p_sha text, p_data bytea) RETURNS void
LANGUAGE plpgsql SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
BEGIN
  IF encode(sha256(p_data), 'hex') <> p_sha THEN
    RAISE EXCEPTION 'the file''s contents do not match their checksum' USING ERRCODE = '22023';
  END IF;
  INSERT INTO trestle.blobs (sha256, data) VALUES (p_sha, p_data) ON CONFLICT DO NOTHING;
END $$;

-- Names the contents of a stored file of a company; a change gets a position.
CREATE FUNCTION trestle.put_file(p_company text, p_name text, p_sha text) RETURNS bigint
LANGUAGE plpgsql SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
DECLARE
  newpos bigint;
BEGIN
  IF p_name IS NULL OR p_name = '' OR p_name LIKE '%/%' OR p_name IN ('.', '..') THEN
    RAISE EXCEPTION 'not a stored file name' USING ERRCODE = '22023';
  END IF;
  IF EXISTS (SELECT 1 FROM trestle.files x WHERE x.company = p_company AND x.name = p_name AND x.sha256 = p_sha) THEN
    RETURN 0;
  END IF;
  newpos := trestle.take_position();
  INSERT INTO trestle.files AS x (company, name, sha256, pos, changed_by, changed_at)
  VALUES (p_company, p_name, p_sha, newpos, session_user, now())
  ON CONFLICT (company, name) DO UPDATE SET sha256 = excluded.sha256, pos = excluded.pos,
    changed_by = excluded.changed_by, changed_at = excluded.changed_at;
  RETURN newpos;
END $$;

RESET ROLE;
)SQL";

const char kGrants[] = R"SQL(
REVOKE ALL ON ALL TABLES IN SCHEMA trestle FROM PUBLIC;
REVOKE ALL ON ALL FUNCTIONS IN SCHEMA trestle FROM PUBLIC;
GRANT USAGE ON SCHEMA trestle TO trestle_member;
GRANT EXECUTE ON FUNCTION trestle.server_info(), trestle.login_names(), trestle.add_notice(text, text, text, text, text),
  trestle.has_blob(text), trestle.put_blob(text, bytea), trestle.put_file(text, text, text) TO trestle_member;
)SQL";

} // namespace ServerSchemaSQL
