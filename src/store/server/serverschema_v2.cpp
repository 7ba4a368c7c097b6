// The second version of the server's definitions: roles the server enforces
// and the history of every change. Applied on top of the first, in the same
// transaction as any refresh of the rules read from the module table.
namespace ServerSchemaSQL {

extern const char kRoles2[];
extern const char kUpgrade2[];

// One group role per role of the team, none of which can log in. The owner
// of the tables may hand them to logins (when an owner changes a member's role).
const char kRoles2[] = R"SQL(
DO $$
DECLARE
  g text;
BEGIN
  FOREACH g IN ARRAY ARRAY['trestle_role_owner', 'trestle_role_project_manager', 'trestle_role_accounting',
                           'trestle_role_field', 'trestle_role_subcontractor'] LOOP
    IF NOT EXISTS (SELECT 1 FROM pg_roles WHERE rolname = g) THEN
      EXECUTE format('CREATE ROLE %I NOLOGIN', g);
    END IF;
    EXECUTE format('GRANT trestle_member TO %I', g);
    EXECUTE format('GRANT %I TO trestle_owner WITH ADMIN OPTION', g);
  END LOOP;
  -- An owner of the company makes and keeps logins through trestle.manage_login, which runs as trestle_owner.
  ALTER ROLE trestle_owner CREATEROLE;
END
$$;
)SQL";

const char kUpgrade2[] = R"SQL(
SET ROLE trestle_owner;

-- What each role of the team may read and change, refreshed from the module
-- table whenever the server is set up or upgraded.
CREATE TABLE trestle.roles (role text PRIMARY KEY, grp text NOT NULL, restricted boolean NOT NULL,
                            hide_money boolean NOT NULL, own_firm boolean NOT NULL DEFAULT false);
CREATE TABLE trestle.role_read (role text NOT NULL, kind text NOT NULL, PRIMARY KEY (role, kind));
CREATE TABLE trestle.role_write (role text NOT NULL, kind text NOT NULL, PRIMARY KEY (role, kind));
CREATE TABLE trestle.role_write_denied (role text NOT NULL, kind text NOT NULL, PRIMARY KEY (role, kind));
CREATE TABLE trestle.role_fields (role text NOT NULL, kind text NOT NULL, field text NOT NULL,
                                  PRIMARY KEY (role, kind, field));

-- Every change of every field, by the server's clock and the login that made it. Append only:
-- no login can change or remove a line; only the owner of the tables could.
CREATE TABLE trestle.history (
  id bigserial PRIMARY KEY,
  at timestamptz NOT NULL DEFAULT now(),
  login text NOT NULL DEFAULT session_user,
  rec text NOT NULL,
  kind text NOT NULL,
  field text NOT NULL,
  old_value text,
  new_value text
);
CREATE INDEX history_rec ON trestle.history (rec, id);

CREATE FUNCTION trestle.record_history() RETURNS trigger LANGUAGE plpgsql AS $$
DECLARE
  old_f jsonb := '{}';
  new_f jsonb := CASE WHEN NEW.deleted THEN '{}'::jsonb ELSE NEW.f END;
BEGIN
  IF TG_OP = 'UPDATE' AND NOT OLD.deleted THEN
    old_f := OLD.f || jsonb_build_object('project', OLD.project, 'parent', OLD.parent);
  END IF;
  IF NOT NEW.deleted THEN
    new_f := new_f || jsonb_build_object('project', NEW.project, 'parent', NEW.parent);
  END IF;
  INSERT INTO trestle.history (rec, kind, field, old_value, new_value)
  SELECT NEW.id, NEW.kind, k.key, old_f->>k.key, new_f->>k.key
  FROM (SELECT jsonb_object_keys(old_f) AS key UNION SELECT jsonb_object_keys(new_f)) k
  WHERE (old_f->k.key) IS DISTINCT FROM (new_f->k.key)
    AND NOT (coalesce(old_f->>k.key, '') = '' AND coalesce(new_f->>k.key, '') = '' AND k.key IN ('project', 'parent'))
  ORDER BY k.key;
  RETURN NULL;
END $$;
CREATE TRIGGER recs_history AFTER INSERT OR UPDATE ON trestle.recs FOR EACH ROW
  EXECUTE FUNCTION trestle.record_history();

-- The role of the person behind this connection, read at every request, so
-- a changed role or a disabled login counts at once. The administrator who
-- set the server up counts as an owner.
CREATE FUNCTION trestle.my_role() RETURNS text LANGUAGE sql STABLE AS $$
  SELECT CASE
    WHEN (SELECT r.rolsuper FROM pg_roles r WHERE r.rolname = session_user) THEN 'Owner'
    ELSE (SELECT coalesce(m.f->>'role', '') FROM trestle.logins l
          JOIN trestle.recs m ON m.id = l.member AND NOT m.deleted
          WHERE l.login = session_user AND NOT l.disabled)
  END
$$;

CREATE FUNCTION trestle.require_login() RETURNS text LANGUAGE plpgsql STABLE AS $$
DECLARE
  r text := trestle.my_role();
BEGIN
  IF r IS NULL THEN
    RAISE EXCEPTION 'the login % is disabled, or is no longer a member of the team', session_user
      USING ERRCODE = '28000';
  END IF;
  RETURN r;
END $$;

-- A role the table does not know acts as a project manager, as in the window.
CREATE FUNCTION trestle.rule_role(p_role text) RETURNS text LANGUAGE sql STABLE AS $$
  SELECT CASE WHEN EXISTS (SELECT 1 FROM trestle.roles x WHERE x.role = p_role) THEN p_role
              ELSE 'Project Manager' END
$$;

CREATE FUNCTION trestle.can_read(p_role text, p_kind text) RETURNS boolean LANGUAGE sql STABLE AS $$
  SELECT NOT coalesce((SELECT x.restricted FROM trestle.roles x WHERE x.role = trestle.rule_role(p_role)), false)
         OR EXISTS (SELECT 1 FROM trestle.role_read x WHERE x.role = trestle.rule_role(p_role) AND x.kind = p_kind)
$$;

CREATE FUNCTION trestle.can_write(p_role text, p_kind text) RETURNS boolean LANGUAGE sql STABLE AS $$
  SELECT CASE WHEN coalesce((SELECT x.restricted FROM trestle.roles x WHERE x.role = trestle.rule_role(p_role)), false)
    THEN EXISTS (SELECT 1 FROM trestle.role_write x WHERE x.role = trestle.rule_role(p_role) AND x.kind = p_kind)
    ELSE NOT EXISTS (SELECT 1 FROM trestle.role_write_denied x
                     WHERE x.role = trestle.rule_role(p_role) AND x.kind = p_kind)
  END
$$;

-- The fields of a record a role may see: for a role that sees no money, only
-- the fields the module table names for the kind, less the money ones.
CREATE FUNCTION trestle.visible_f(p_role text, p_kind text, p_f jsonb) RETURNS jsonb LANGUAGE sql STABLE AS $$
  SELECT CASE WHEN NOT coalesce((SELECT x.hide_money FROM trestle.roles x WHERE x.role = trestle.rule_role(p_role)),
                                false) THEN p_f
    ELSE coalesce((SELECT jsonb_object_agg(e.key, e.value) FROM jsonb_each(p_f) e
                   WHERE EXISTS (SELECT 1 FROM trestle.role_fields x WHERE x.role = trestle.rule_role(p_role)
                                   AND x.kind = p_kind AND x.field = e.key)), '{}'::jsonb)
  END
$$;

CREATE FUNCTION trestle.hidden_f(p_role text, p_kind text, p_f jsonb) RETURNS jsonb LANGUAGE sql STABLE AS $$
  SELECT coalesce((SELECT jsonb_object_agg(e.key, e.value) FROM jsonb_each(p_f) e
                   WHERE NOT (trestle.visible_f(p_role, p_kind, jsonb_build_object(e.key, e.value)) ? e.key)),
                  '{}'::jsonb)
$$;

CREATE FUNCTION trestle.rec_json_for(p_role text, r trestle.recs) RETURNS text LANGUAGE sql STABLE AS $$
  SELECT json_build_object('id', r.id, 'kind', r.kind, 'company', r.company, 'project', r.project,
                           'parent', r.parent, 'created', r.created, 'updated', r.updated,
                           'f', trestle.visible_f(p_role, r.kind, r.f))::text
$$;

-- For a role that sees only its own firm's work: the records that name the
-- login's firm (the contact its member record points to), their lines, their
-- projects, the firm itself, the member and the company. Removed records count
-- too, so a seat learns of a removal.
CREATE FUNCTION trestle.firm_scope(p_login text) RETURNS TABLE (id text) LANGUAGE sql STABLE AS $$
  WITH me AS (SELECT m.id AS member, m.company, coalesce(m.f->>'firm', '') AS firm
              FROM trestle.logins l JOIN trestle.recs m ON m.id = l.member WHERE l.login = p_login),
  direct AS (SELECT r.id, r.project FROM trestle.recs r, me
             WHERE r.company = me.company AND me.firm <> ''
               AND (r.id = me.firm OR EXISTS (SELECT 1 FROM jsonb_each_text(r.f) e WHERE e.value = me.firm)))
  SELECT d.id FROM direct d
  UNION SELECT r.id FROM trestle.recs r JOIN direct d ON r.parent = d.id
  UNION SELECT d.project FROM direct d WHERE d.project <> ''
  UNION SELECT me.member FROM me
  UNION SELECT me.company FROM me
$$;

-- Whether one record is in the login's firm scope, without working out the whole scope.
CREATE FUNCTION trestle.in_firm(p_login text, p_id text) RETURNS boolean LANGUAGE plpgsql STABLE AS $$
DECLARE
  me record;
  r trestle.recs;
BEGIN
  SELECT m.id AS member, m.company, coalesce(m.f->>'firm', '') AS firm INTO me
  FROM trestle.logins l JOIN trestle.recs m ON m.id = l.member WHERE l.login = p_login;
  IF NOT FOUND THEN
    RETURN false;
  END IF;
  IF p_id = me.member OR p_id = me.company OR (me.firm <> '' AND p_id = me.firm) THEN
    RETURN true;
  END IF;
  IF me.firm = '' THEN
    RETURN false;
  END IF;
  SELECT * INTO r FROM trestle.recs x WHERE x.id = p_id;
  IF NOT FOUND THEN
    RETURN false;
  END IF;
  RETURN EXISTS (SELECT 1 FROM jsonb_each_text(r.f) e WHERE e.value = me.firm)
      OR (r.parent <> '' AND EXISTS (SELECT 1 FROM trestle.recs p, jsonb_each_text(p.f) e
                                     WHERE p.id = r.parent AND e.value = me.firm))
      OR (r.kind = 'project' AND EXISTS (SELECT 1 FROM trestle.recs o, jsonb_each_text(o.f) e
                                         WHERE o.project = r.id AND o.company = r.company AND e.value = me.firm));
END $$;

CREATE FUNCTION trestle.own_firm(p_role text) RETURNS boolean LANGUAGE sql STABLE AS $$
  SELECT coalesce((SELECT x.own_firm FROM trestle.roles x WHERE x.role = trestle.rule_role(p_role)), false)
$$;

-- Puts a member's logins in the group of the member's role.
CREATE FUNCTION trestle.sync_login_groups(p_member text) RETURNS void LANGUAGE plpgsql AS $$
DECLARE
  l text;
  g text;
  want text := (SELECT x.grp FROM trestle.roles x
                WHERE x.role = trestle.rule_role((SELECT m.f->>'role' FROM trestle.recs m WHERE m.id = p_member)));
BEGIN
  FOR l IN SELECT x.login FROM trestle.logins x WHERE x.member = p_member LOOP
    FOR g IN SELECT x.grp FROM trestle.roles x LOOP
      IF g <> want AND pg_has_role(l, g, 'MEMBER') THEN
        EXECUTE format('REVOKE %I FROM %I', g, l);
      END IF;
    END LOOP;
    IF want IS NOT NULL AND NOT pg_has_role(l, want, 'MEMBER') THEN
      EXECUTE format('GRANT %I TO %I', want, l);
    END IF;
  END LOOP;
END $$;

DROP FUNCTION IF EXISTS trestle.changes_since(bigint, integer);
CREATE FUNCTION trestle.changes_since(p_pos bigint, p_limit integer)
RETURNS TABLE (rec text, version bigint, pos bigint, deleted boolean, changed_by text, changed_at timestamptz)
LANGUAGE plpgsql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
DECLARE
  me text := trestle.require_login();
  rr text := trestle.rule_role(me);
  limited boolean := coalesce((SELECT x.restricted FROM trestle.roles x WHERE x.role = rr), false);
  hide boolean := coalesce((SELECT x.hide_money FROM trestle.roles x WHERE x.role = rr), false);
  firm_only boolean := trestle.own_firm(me);
BEGIN
  IF firm_only THEN
    RETURN QUERY
    SELECT CASE WHEN hide THEN trestle.rec_json_for(me, r) ELSE trestle.rec_json(r) END, r.version, r.pos,
           r.deleted, r.changed_by, r.changed_at
    FROM trestle.recs r
    WHERE r.pos > p_pos AND (NOT limited OR r.kind IN (SELECT x.kind FROM trestle.role_read x WHERE x.role = rr))
      AND r.id IN (SELECT s.id FROM trestle.firm_scope(session_user) s)
    ORDER BY r.pos LIMIT p_limit;
    RETURN;
  END IF;
  RETURN QUERY
  SELECT CASE WHEN hide THEN trestle.rec_json_for(me, r) ELSE trestle.rec_json(r) END, r.version, r.pos,
         r.deleted, r.changed_by, r.changed_at
  FROM trestle.recs r
  WHERE r.pos > p_pos AND (NOT limited OR r.kind IN (SELECT x.kind FROM trestle.role_read x WHERE x.role = rr))
  ORDER BY r.pos LIMIT p_limit;
END $$;

DROP FUNCTION IF EXISTS trestle.rec(text);
CREATE FUNCTION trestle.rec(p_id text)
RETURNS TABLE (rec text, version bigint, pos bigint, deleted boolean, changed_by text, changed_at timestamptz)
LANGUAGE plpgsql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
DECLARE
  me text := trestle.require_login();
BEGIN
  RETURN QUERY
  SELECT trestle.rec_json_for(me, r), r.version, r.pos, r.deleted, r.changed_by, r.changed_at
  FROM trestle.recs r WHERE r.id = p_id AND trestle.can_read(me, r.kind)
    AND (NOT trestle.own_firm(me) OR trestle.in_firm(session_user, r.id));
END $$;

DROP FUNCTION IF EXISTS trestle.put_rec(text, bigint, text, text, text, text, double precision, double precision, jsonb, boolean);
CREATE FUNCTION trestle.put_rec(p_id text, p_base bigint, p_company text, p_kind text, p_project text,
                                p_parent text, p_created double precision, p_updated double precision,
                                p_f jsonb, p_force boolean)
RETURNS TABLE (status text, rec text, version bigint, pos bigint, deleted boolean, changed_by text,
               changed_at timestamptz)
LANGUAGE plpgsql SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
DECLARE
  me text := trestle.require_login();
  cur trestle.recs;
  had boolean;
  st text := 'ok';
  nf jsonb;
  next_number bigint;
  newpos bigint;
BEGIN
  IF p_id IS NULL OR p_id = '' OR p_kind IS NULL OR p_kind = '' OR jsonb_typeof(p_f) <> 'object' THEN
    RAISE EXCEPTION 'not a record' USING ERRCODE = '22023';
  END IF;
  newpos := trestle.take_position();
  SELECT * INTO cur FROM trestle.recs r WHERE r.id = p_id FOR UPDATE;
  had := FOUND;
  IF NOT trestle.can_write(me, p_kind) OR (had AND NOT trestle.can_write(me, cur.kind)) THEN
    RAISE EXCEPTION 'the % role may not change records of the kind %', me, p_kind USING ERRCODE = '42501';
  END IF;
  IF had AND trestle.own_firm(me) THEN
    IF NOT trestle.in_firm(session_user, p_id) THEN
      RAISE EXCEPTION 'this record is not your firm''s' USING ERRCODE = '42501';
    END IF;
  END IF;
  -- Fields the role cannot see are kept as the server has them, whatever the seat sent.
  nf := trestle.visible_f(me, p_kind, p_f);
  IF had THEN
    nf := nf || trestle.hidden_f(me, p_kind, cur.f);
  END IF;
  IF had AND cur.version <> p_base AND NOT p_force THEN
    RETURN QUERY SELECT 'conflict'::text, trestle.rec_json_for(me, cur), cur.version, cur.pos, cur.deleted,
                        cur.changed_by, cur.changed_at;
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
  IF p_kind = 'user' AND (NOT had OR cur.f->>'role' IS DISTINCT FROM nf->>'role') THEN
    PERFORM trestle.sync_login_groups(p_id);
  END IF;
  -- What a firm's login writes must stay its firm's: a new record names the firm or hangs from its work.
  IF trestle.own_firm(me) THEN
    IF NOT trestle.in_firm(session_user, p_id) THEN
      RAISE EXCEPTION 'a record your firm writes must name your firm' USING ERRCODE = '42501';
    END IF;
  END IF;
  RETURN QUERY SELECT st, trestle.rec_json_for(me, r), r.version, r.pos, r.deleted, r.changed_by, r.changed_at
               FROM trestle.recs r WHERE r.id = p_id;
END $$;

DROP FUNCTION IF EXISTS trestle.remove_rec(text, bigint, boolean);
CREATE FUNCTION trestle.remove_rec(p_id text, p_base bigint, p_force boolean)
RETURNS TABLE (status text, rec text, version bigint, pos bigint, deleted boolean, changed_by text,
               changed_at timestamptz)
LANGUAGE plpgsql SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
DECLARE
  me text := trestle.require_login();
  cur trestle.recs;
  newpos bigint;
BEGIN
  newpos := trestle.take_position();
  SELECT * INTO cur FROM trestle.recs r WHERE r.id = p_id FOR UPDATE;
  IF NOT FOUND THEN
    RETURN QUERY SELECT 'ok'::text, NULL::text, 0::bigint, 0::bigint, true, session_user::text, now();
    RETURN;
  END IF;
  IF NOT trestle.can_write(me, cur.kind) OR (trestle.own_firm(me) AND NOT trestle.in_firm(session_user, p_id)) THEN
    RAISE EXCEPTION 'the % role may not remove this record', me USING ERRCODE = '42501';
  END IF;
  IF cur.deleted OR (cur.version <> p_base AND NOT p_force) THEN
    RETURN QUERY SELECT CASE WHEN cur.deleted THEN 'ok' ELSE 'conflict' END, trestle.rec_json_for(me, cur),
                        cur.version, cur.pos, cur.deleted, cur.changed_by, cur.changed_at;
    RETURN;
  END IF;
  UPDATE trestle.recs r SET deleted = true, version = r.version + 1, pos = newpos, changed_by = session_user,
    changed_at = now() WHERE r.id = p_id;
  RETURN QUERY SELECT 'ok'::text, trestle.rec_json_for(me, r), r.version, r.pos, r.deleted, r.changed_by,
                      r.changed_at FROM trestle.recs r WHERE r.id = p_id;
END $$;

-- The history of one record as the role may see it, oldest first.
CREATE FUNCTION trestle.history_of(p_rec text)
RETURNS TABLE (at timestamptz, login text, field text, old_value text, new_value text)
LANGUAGE plpgsql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
DECLARE
  me text := trestle.require_login();
  k text := (SELECT r.kind FROM trestle.recs r WHERE r.id = p_rec);
BEGIN
  IF k IS NULL OR NOT trestle.can_read(me, k) OR (trestle.own_firm(me) AND NOT trestle.in_firm(session_user, p_rec)) THEN
    RETURN;
  END IF;
  RETURN QUERY
  SELECT h.at, h.login, h.field, h.old_value, h.new_value FROM trestle.history h
  WHERE h.rec = p_rec
    AND (h.field IN ('project', 'parent') OR trestle.visible_f(me, k, jsonb_build_object(h.field, '')) ? h.field)
  ORDER BY h.id;
END $$;

-- The requests that read or write anything first ask who is asking.
CREATE OR REPLACE FUNCTION trestle.notices_since(p_id bigint)
RETURNS TABLE (id bigint, rec text, field text, replaced text, kept text, by_login text, at timestamptz)
LANGUAGE plpgsql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
BEGIN
  PERFORM trestle.require_login();
  RETURN QUERY SELECT n.id, n.rec, n.field, n.replaced, n.kept, n.by_login, n.at FROM trestle.notices n
  WHERE n.for_login = session_user AND n.id > p_id ORDER BY n.id;
END $$;

DROP FUNCTION IF EXISTS trestle.whoami();
CREATE FUNCTION trestle.whoami(OUT login text, OUT company text, OUT member text, OUT role text)
LANGUAGE sql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
  SELECT session_user::text, l.company, l.member, trestle.my_role() FROM trestle.logins l
  WHERE l.login = session_user
$$;

CREATE OR REPLACE FUNCTION trestle.get_blob(p_sha text) RETURNS bytea
LANGUAGE plpgsql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
BEGIN
  PERFORM trestle.require_login();
  RETURN (SELECT b.data FROM trestle.blobs b WHERE b.sha256 = p_sha);
END $$;

CREATE OR REPLACE FUNCTION trestle.files_since(p_pos bigint)
RETURNS TABLE (company text, name text, sha256 text, pos bigint)
LANGUAGE plpgsql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
BEGIN
  PERFORM trestle.require_login();
  RETURN QUERY SELECT x.company, x.name, x.sha256, x.pos FROM trestle.files x WHERE x.pos > p_pos ORDER BY x.pos;
END $$;

-- The logins of the caller's company, for an owner.
CREATE FUNCTION trestle.login_list()
RETURNS TABLE (login text, member text, disabled boolean)
LANGUAGE plpgsql STABLE SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
BEGIN
  IF trestle.require_login() <> 'Owner' THEN
    RAISE EXCEPTION 'only an owner manages logins' USING ERRCODE = '42501';
  END IF;
  RETURN QUERY SELECT l.login, l.member, l.disabled FROM trestle.logins l
  WHERE l.company = (SELECT x.company FROM trestle.logins x WHERE x.login = session_user)
     OR NOT EXISTS (SELECT 1 FROM trestle.logins x WHERE x.login = session_user)
  ORDER BY l.login;
END $$;

-- What an owner does to the logins of the company's members: make one
-- ('create', with a password verifier made on the seat), set a new password
-- ('password'), or shut one out and let it back in ('disable', 'enable').
-- Only logins Trestle made are touched, and only a member of the owner's company.
CREATE FUNCTION trestle.manage_login(p_action text, p_login text, p_member text, p_verifier text)
RETURNS void LANGUAGE plpgsql SECURITY DEFINER SET search_path = trestle, pg_temp AS $$
DECLARE
  company text := (SELECT x.company FROM trestle.logins x WHERE x.login = session_user);
  member_company text := (SELECT m.company FROM trestle.recs m WHERE m.id = p_member AND m.kind = 'user'
                          AND NOT m.deleted);
  known trestle.logins;
BEGIN
  IF trestle.require_login() <> 'Owner' THEN
    RAISE EXCEPTION 'only an owner manages logins' USING ERRCODE = '42501';
  END IF;
  IF p_login IS NULL OR p_login !~ '^[a-z_][a-z0-9_.-]{0,62}$' OR p_login LIKE 'pg\_%' OR p_login LIKE 'trestle\_%' THEN
    RAISE EXCEPTION '"%" cannot be a login: use lower-case letters, digits, ".", "-" or "_", starting with a letter',
      p_login USING ERRCODE = '22023';
  END IF;
  IF member_company IS NULL OR (company IS NOT NULL AND member_company <> company) THEN
    RAISE EXCEPTION 'no such member of the company' USING ERRCODE = '22023';
  END IF;
  SELECT * INTO known FROM trestle.logins x WHERE x.login = p_login;
  IF p_action = 'create' THEN
    IF FOUND OR EXISTS (SELECT 1 FROM pg_roles r WHERE r.rolname = p_login) THEN
      RAISE EXCEPTION 'the login % is taken', p_login USING ERRCODE = '42710';
    END IF;
    IF p_verifier IS NULL OR p_verifier NOT LIKE 'SCRAM-SHA-256$%' THEN
      RAISE EXCEPTION 'a password is needed' USING ERRCODE = '22023';
    END IF;
    EXECUTE format('CREATE ROLE %I LOGIN PASSWORD %L', p_login, p_verifier);
    INSERT INTO trestle.logins (login, company, member) VALUES (p_login, member_company, p_member);
    PERFORM trestle.sync_login_groups(p_member);
    RETURN;
  END IF;
  IF NOT FOUND OR known.member <> p_member THEN
    RAISE EXCEPTION 'the login % is not this member''s', p_login USING ERRCODE = '22023';
  END IF;
  IF p_action = 'password' THEN
    IF p_verifier IS NULL OR p_verifier NOT LIKE 'SCRAM-SHA-256$%' THEN
      RAISE EXCEPTION 'a password is needed' USING ERRCODE = '22023';
    END IF;
    EXECUTE format('ALTER ROLE %I PASSWORD %L', p_login, p_verifier);
  ELSIF p_action = 'disable' THEN
    UPDATE trestle.logins x SET disabled = true WHERE x.login = p_login;
    EXECUTE format('ALTER ROLE %I NOLOGIN', p_login);
  ELSIF p_action = 'enable' THEN
    UPDATE trestle.logins x SET disabled = false WHERE x.login = p_login;
    EXECUTE format('ALTER ROLE %I LOGIN', p_login);
  ELSE
    RAISE EXCEPTION 'unknown action %', p_action USING ERRCODE = '22023';
  END IF;
END $$;

RESET ROLE;

REVOKE ALL ON ALL TABLES IN SCHEMA trestle FROM PUBLIC;
REVOKE ALL ON ALL FUNCTIONS IN SCHEMA trestle FROM PUBLIC;
GRANT EXECUTE ON FUNCTION trestle.changes_since(bigint, integer), trestle.rec(text),
  trestle.put_rec(text, bigint, text, text, text, text, double precision, double precision, jsonb, boolean),
  trestle.remove_rec(text, bigint, boolean), trestle.history_of(text), trestle.notices_since(bigint),
  trestle.whoami(), trestle.login_list(), trestle.manage_login(text, text, text, text), trestle.get_blob(text),
  trestle.files_since(bigint) TO trestle_member;
)SQL";

} // namespace ServerSchemaSQL
