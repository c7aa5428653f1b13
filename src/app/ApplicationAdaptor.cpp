#include "ApplicationAdaptor.h"

#include "SingleInstance.h"

ApplicationAdaptor::ApplicationAdaptor(SingleInstance &instance, QObject *parent)
    : QDBusAbstractAdaptor(parent)
    , m_instance(instance)
{}

void ApplicationAdaptor::Activate(const QVariantMap &)
{
    m_instance.requestActivate();
}

void ApplicationAdaptor::Open(const QStringList &, const QVariantMap &)
{
    m_instance.requestActivate();
}

void ApplicationAdaptor::ActivateAction(const QString &actionName, const QVariantList &,
                                        const QVariantMap &)
{
    if (actionName == u"settings")
        m_instance.requestSettings();
    else if (actionName == u"panel")
        m_instance.requestPanel();
    else
        m_instance.requestActivate();
}
