#include "tools/connection_manager/manager_translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace connection_manager {
namespace {
void install(const QLocale& locale, const QString& name, const QString& folder)
{
    auto* translator = new QTranslator(QCoreApplication::instance());
    if (translator->load(locale, name, QStringLiteral("_"), folder)) {
        QCoreApplication::installTranslator(translator);
    } else {
        delete translator;
    }
}
} // namespace

void install_translations(const QLocale& locale)
{
    install(locale, QStringLiteral("qtbase"), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    install(locale, QStringLiteral("connection_manager"), QStringLiteral(":/connection_manager"));
}
} // namespace connection_manager
