// The definitions a company server holds. Everything belongs to trestle_owner,
// which cannot log in; seats reach the rows only through the functions below,
// which run as their owner and take every value as a parameter.
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

CREATE FUNCTION trestle.whoami(OUT login text, OUT company text, OUT member text)
LANGUAGE sql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
  SELECT session_user::text, l.company, l.member FROM trestle.logins l WHERE l.login = session_user
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

CREATE FUNCTION trestle.changes_since(p_pos bigint, p_limit integer)
RETURNS TABLE (rec text, version bigint, pos bigint, deleted boolean, changed_by text, changed_at timestamptz)
LANGUAGE sql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
  SELECT trestle.rec_json(r), r.version, r.pos, r.deleted, r.changed_by, r.changed_at
  FROM trestle.recs r WHERE r.pos > p_pos ORDER BY r.pos LIMIT p_limit
$$;

CREATE FUNCTION trestle.rec(p_id text)
RETURNS TABLE (rec text, version bigint, pos bigint, deleted boolean, changed_by text, changed_at timestamptz)
LANGUAGE sql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
  SELECT trestle.rec_json(r), r.version, r.pos, r.deleted, r.changed_by, r.changed_at
  FROM trestle.recs r WHERE r.id = p_id
$$;

-- Writes a record over the version the seat last saw. When the server has
-- moved on, nothing is written and the server's record comes back for the
-- seat to merge. A number already taken by another record of its kind in
-- the project is replaced by the next free one.
CREATE FUNCTION trestle.put_rec(p_id text, p_base bigint, p_company text, p_kind text, p_project text,
                                p_parent text, p_created double precision, p_updated double precision,
                                p_f jsonb, p_force boolean)
RETURNS TABLE (status text, rec text, version bigint, pos bigint, deleted boolean, changed_by text,
               changed_at timestamptz)
LANGUAGE plpgsql SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
DECLARE
  cur trestle.recs;
  had boolean;
  st text := 'ok';
  nf jsonb := p_f;
  next_number bigint;
  newpos bigint;
BEGIN
  IF p_id IS NULL OR p_id = '' OR p_kind IS NULL OR p_kind = '' OR jsonb_typeof(p_f) <> 'object' THEN
    RAISE EXCEPTION 'not a record' USING ERRCODE = '22023';
  END IF;
  newpos := trestle.take_position();
  SELECT * INTO cur FROM trestle.recs r WHERE r.id = p_id FOR UPDATE;
  had := FOUND;
  IF had AND cur.version <> p_base AND NOT p_force THEN
    RETURN QUERY SELECT 'conflict'::text, trestle.rec_json(cur), cur.version, cur.pos, cur.deleted, cur.changed_by,
                        cur.changed_at;
    RETURN;
  END IF;
  IF EXISTS (SELECT 1 FROM trestle.numbered n WHERE n.kind = p_kind) AND nf ? 'number'
     AND (NOT had OR cur.deleted OR cur.f->>'number' IS DISTINCT FROM nf->>'number')
     AND EXISTS (SELECT 1 FROM trestle.recs o
                 WHERE o.company = p_company AND o.kind = p_kind AND o.project = p_project AND NOT o.deleted
                   AND o.id <> p_id AND o.f->>'number' = nf->>'number') THEN
    SELECT coalesce(max((o.f->>'number')::bigint), 0) + 1 INTO next_number FROM trestle.recs o
    WHERE o.company = p_company AND o.kind = p_kind AND o.project = p_project AND NOT o.deleted
      AND o.f->>'number' ~ '^[0-9]{1,17}$';
    nf := jsonb_set(nf, '{number}', to_jsonb(next_number::text));
    st := 'renumbered';
  END IF;
  INSERT INTO trestle.recs AS r (id, company, kind, project, parent, created, updated, f, version, pos, deleted,
                                 changed_by, changed_at)
  VALUES (p_id, p_company, p_kind, coalesce(p_project, ''), coalesce(p_parent, ''), p_created, p_updated, nf,
          coalesce(cur.version, 0) + 1, newpos, false, session_user, now())
  ON CONFLICT (id) DO UPDATE SET company = excluded.company, kind = excluded.kind, project = excluded.project,
    parent = excluded.parent, created = excluded.created, updated = excluded.updated, f = excluded.f,
    version = r.version + 1, pos = excluded.pos, deleted = false, changed_by = excluded.changed_by,
    changed_at = excluded.changed_at;
  RETURN QUERY SELECT st, trestle.rec_json(r), r.version, r.pos, r.deleted, r.changed_by, r.changed_at
               FROM trestle.recs r WHERE r.id = p_id;
END $$;

-- Removes a record over the version the seat last saw; the row stays as a
-- tombstone so every seat learns of the removal.
CREATE FUNCTION trestle.remove_rec(p_id text, p_base bigint, p_force boolean)
RETURNS TABLE (status text, rec text, version bigint, pos bigint, deleted boolean, changed_by text,
               changed_at timestamptz)
LANGUAGE plpgsql SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
DECLARE
  cur trestle.recs;
  newpos bigint;
BEGIN
  newpos := trestle.take_position();
  SELECT * INTO cur FROM trestle.recs r WHERE r.id = p_id FOR UPDATE;
  IF NOT FOUND THEN
    RETURN QUERY SELECT 'ok'::text, NULL::text, 0::bigint, 0::bigint, true, session_user::text, now();
    RETURN;
  END IF;
  IF cur.deleted OR (cur.version <> p_base AND NOT p_force) THEN
    RETURN QUERY SELECT CASE WHEN cur.deleted THEN 'ok' ELSE 'conflict' END, trestle.rec_json(cur), cur.version,
                        cur.pos, cur.deleted, cur.changed_by, cur.changed_at;
    RETURN;
  END IF;
  UPDATE trestle.recs r SET deleted = true, version = r.version + 1, pos = newpos, changed_by = session_user,
    changed_at = now() WHERE r.id = p_id;
  RETURN QUERY SELECT 'ok'::text, trestle.rec_json(r), r.version, r.pos, r.deleted, r.changed_by, r.changed_at
               FROM trestle.recs r WHERE r.id = p_id;
END $$;

-- Tells `p_for` that a value of theirs was replaced by a later save.
CREATE FUNCTION trestle.add_notice(p_for text, p_rec text, p_field text, p_replaced text, p_kept text)
RETURNS void LANGUAGE sql SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
  INSERT INTO trestle.notices (for_login, rec, field, replaced, kept, by_login, at)
  VALUES (p_for, p_rec, p_field, p_replaced, p_kept, session_user, now())
$$;

CREATE FUNCTION trestle.notices_since(p_id bigint)
RETURNS TABLE (id bigint, rec text, field text, replaced text, kept text, by_login text, at timestamptz)
LANGUAGE sql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
  SELECT n.id, n.rec, n.field, n.replaced, n.kept, n.by_login, n.at FROM trestle.notices n
  WHERE n.for_login = session_user AND n.id > p_id ORDER BY n.id
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

CREATE FUNCTION trestle.get_blob(p_sha text) RETURNS bytea
LANGUAGE sql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
  SELECT b.data FROM trestle.blobs b WHERE b.sha256 = p_sha
$$;

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

CREATE FUNCTION trestle.files_since(p_pos bigint)
RETURNS TABLE (company text, name text, sha256 text, pos bigint)
LANGUAGE sql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
  SELECT x.company, x.name, x.sha256, x.pos FROM trestle.files x WHERE x.pos > p_pos ORDER BY x.pos
$$;

RESET ROLE;
)SQL";

const char kGrants[] = R"SQL(
REVOKE ALL ON ALL TABLES IN SCHEMA trestle FROM PUBLIC;
REVOKE ALL ON ALL FUNCTIONS IN SCHEMA trestle FROM PUBLIC;
GRANT USAGE ON SCHEMA trestle TO trestle_member;
GRANT EXECUTE ON FUNCTION trestle.server_info(), trestle.whoami(), trestle.login_names(),
  trestle.changes_since(bigint, integer), trestle.rec(text),
  trestle.put_rec(text, bigint, text, text, text, text, double precision, double precision, jsonb, boolean),
  trestle.remove_rec(text, bigint, boolean), trestle.add_notice(text, text, text, text, text),
  trestle.notices_since(bigint), trestle.has_blob(text), trestle.put_blob(text, bytea),
  trestle.get_blob(text), trestle.put_file(text, text, text), trestle.files_since(bigint)
  TO trestle_member;
)SQL";

} // namespace ServerSchemaSQL
