#include "WorkingHoursGroup.h"

#include "AppStyle.h"
#include "FormGroup.h"
#include "ToggleSwitch.h"
#include "ZoneStore.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QTimeEdit>
#include <QVBoxLayout>

namespace {

// The range offered when the switch is first turned on.
const WorkingHours usualHours{QTime(9, 0), QTime(18, 0)};

QTimeEdit *timeField(const QString &objectName, const QString &accessibleName)
{
    auto *field = new QTimeEdit;
    field->setObjectName(objectName);
    field->setAccessibleName(accessibleName);
    field->setDisplayFormat(QStringLiteral("HH:mm"));
    field->setWrapping(true);
    field->setFont(AppStyle::uiFont(13));
    return field;
}

QLabel *fieldLabel(const QString &text, QWidget *field)
{
    auto *label = new QLabel(text);
    label->setFont(AppStyle::uiFont(13));
    label->setBuddy(field);
    return label;
}

} // namespace

WorkingHoursGroup::WorkingHoursGroup(ZoneStore &store, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_toggle(new ToggleSwitch(QStringLiteral("Dim cities outside working hours")))
    , m_from(timeField(QStringLiteral("working-hours-from"), QStringLiteral("Working hours from")))
    , m_to(timeField(QStringLiteral("working-hours-to"), QStringLiteral("Working hours to")))
    , m_range(new QWidget)
{
    m_toggle->setObjectName(QStringLiteral("working-hours"));
    m_from->setTime(usualHours.start);
    m_to->setTime(usualHours.end);

    auto *rangeLayout = new QHBoxLayout(m_range);
    rangeLayout->setContentsMargins(0, 0, 0, 0);
    rangeLayout->setSpacing(8);
    rangeLayout->addWidget(fieldLabel(QStringLiteral("From"), m_from));
    rangeLayout->addWidget(m_from);
    rangeLayout->addSpacing(12);
    rangeLayout->addWidget(fieldLabel(QStringLiteral("To"), m_to));
    rangeLayout->addWidget(m_to);
    rangeLayout->addStretch();

    auto *group = new FormGroup(QStringLiteral("Working hours"));
    group->addRow(m_toggle);
    group->addRow(m_range);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(group);
    setTabOrder(m_toggle, m_from);
    setTabOrder(m_from, m_to);

    connect(m_toggle, &ToggleSwitch::clicked, this, &WorkingHoursGroup::save);
    connect(m_from, &QTimeEdit::timeChanged, this, &WorkingHoursGroup::save);
    connect(m_to, &QTimeEdit::timeChanged, this, &WorkingHoursGroup::save);
    connect(&m_store, &ZoneStore::workingHoursChanged, this, &WorkingHoursGroup::showStored);
    showStored();
}

void WorkingHoursGroup::save()
{
    if (!m_toggle->isChecked()) {
        m_store.setWorkingHours(std::nullopt);
    } else if (m_from->time() != m_to->time()) {
        // Passing through an empty range while editing one end changes nothing.
        m_store.setWorkingHours(WorkingHours{m_from->time(), m_to->time()});
    }
    showStored();
}

void WorkingHoursGroup::showStored()
{
    const std::optional<WorkingHours> hours = m_store.workingHours();
    const QSignalBlocker fromBlocker(m_from);
    const QSignalBlocker toBlocker(m_to);
    m_toggle->setChecked(hours.has_value());
    // Off, the fields keep the last range, to come back to.
    if (hours) {
        m_from->setTime(hours->start);
        m_to->setTime(hours->end);
    }
    // The labels grey out with the fields.
    m_range->setEnabled(hours.has_value());
}
