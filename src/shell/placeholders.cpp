#include "placeholders.h"

#include "emptystate.h"
#include "nav.h"
#include "pickproject.h"
#include "screentitle.h"

#include "catalog/moduledef.h"
#include "look/fwui.h"
#include "store/db.h"

#include <QtWidgets/QBoxLayout>

using namespace Qt::StringLiterals;

namespace {

class PlaceholderScreen : public ShellScreen
{
public:
    explicit PlaceholderScreen(const ScreenContext &ctx)
        : m_db(ctx.db)
        , m_nav(ctx.nav)
        , m_module(ctx.module)
        , m_box(new QVBoxLayout(this))
    {
        m_title = new ScreenTitle(m_module, m_module.blurb, nullptr, this);
        m_box->addWidget(m_title);
        rebuild();
        connect(&FWUI::shared(), &FWUI::changed, this, [this] { margins(); });
        margins();
    }

    void refresh() override { rebuild(); }

private:
    void margins()
    {
        const FWUI &ui = FWUI::shared();
        m_box->setContentsMargins(ui.px(24), ui.px(18), ui.px(24), ui.px(18));
    }

    // The body changes only when the project or the record count changes.
    void rebuild()
    {
        const std::optional<Rec> project = m_nav.project(m_db);
        const bool needsProject = m_module.perProject && !project && m_module.screen.has_value();
        RecFilter filter;
        if (m_module.perProject && project)
            filter.project = project->id;
        const qsizetype n = m_module.kind.isEmpty() ? 0 : m_db.count(m_module.kind, filter);
        const QString key = needsProject ? u"pick|"_s + QString::number(m_db.count(u"project"_s))
                                         : u"body|"_s + QString::number(n);
        if (key == m_key)
            return;
        m_key = key;
        delete m_body;
        if (needsProject) {
            m_body = new PickProject(m_db, m_nav, m_module, this);
        } else if (m_module.screen) {
            m_body = new EmptyState(m_module.symbol, m_module.title, m_module.blurb, this);
        } else if (n == 0) {
            m_body = new EmptyState(m_module.symbol, u"No "_s + m_module.title.toLower() + u" yet"_s,
                                    u"Nothing is recorded here yet."_s, this);
        } else {
            m_body = new EmptyState(m_module.symbol, m_module.title,
                                    QString::number(n) + (n == 1 ? u" record"_s : u" records"_s) +
                                        u" here. Their list opens in a later version."_s,
                                    this);
        }
        m_box->addWidget(m_body, 1);
    }

    DB &m_db;
    Nav &m_nav;
    const ModuleDef &m_module;
    QVBoxLayout *m_box;
    ScreenTitle *m_title;
    QWidget *m_body = nullptr;
    QString m_key;
};

} // namespace

namespace Placeholders {

ShellScreen *make(const ScreenContext &ctx)
{
    return new PlaceholderScreen(ctx);
}

} // namespace Placeholders
