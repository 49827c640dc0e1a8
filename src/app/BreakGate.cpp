// SPDX-License-Identifier: GPL-3.0-or-later
#include "BreakGate.h"

#include "AppState.h"
#include "StateChanges.h"
#include "break/PromptState.h"
#include "break/WindowController.h"
#include "events/HoldConditions.h"
#include "history/HistoryRecorder.h"
#include "logging/Logger.h"
#include "logging/NumberText.h"
#include "preferences/PrefState.h"
#include "timer/TicktackController.h"
#include "timer/TicktackState.h"

#include <QCoreApplication>
#include <utility>

namespace {

BreakGate::HoldSourceFactory& holdSourceFactory()
{
    static BreakGate::HoldSourceFactory factory;
    return factory;
}

} // namespace

BreakGate::BreakGate(QObject* parent) : QObject(parent)
{
    PrefState& prefs = AppState::prefState();
    connect(&prefs, &PrefState::holdBreaksChanged, this, &BreakGate::holdOptionChanged);
    const auto postponeRulesChanged = [this] {
        AppState::promptState().updatePostponeButton();
        emit changed();
    };
    connect(&prefs, &PrefState::allowPostponeChanged, this, postponeRulesChanged);
    connect(&prefs, &PrefState::postponeLimitStringChanged, this, postponeRulesChanged);
    connect(&AppState::workState(), &TicktackState::timeStringChanged, this, &BreakGate::workTicked);
    connect(&AppState::changes(), &StateChanges::changed, this, &BreakGate::cycleChanged);
    holdOptionChanged();
}

BreakGate::~BreakGate() = default;

void BreakGate::setHoldSourceFactory(HoldSourceFactory factory)
{
    holdSourceFactory() = std::move(factory);
}

void BreakGate::workPeriodEnded()
{
    if (m_held)
        return;
    if (m_holdSource && m_holdSource->holding()) {
        enterHold();
        return;
    }
    showBreakNow();
}

QString BreakGate::heldTimeString() const
{
    return u'+' + TicktackController::format(m_heldSeconds);
}

QString BreakGate::holdReason() const
{
    return m_held && m_holdSource ? m_holdSource->reason() : QString();
}

bool BreakGate::postponeAllowed() const
{
    const PrefState& prefs = AppState::prefState();
    return prefs.allowPostpone() && m_postpones < prefs.postponeLimit();
}

QString BreakGate::postpone(double seconds)
{
    PrefState& prefs = AppState::prefState();
    if (!prefs.allowPostpone())
        return tr("Postponing breaks is off: turn it on in the settings, under Timing.");
    const qint64 limit = prefs.postponeLimit();
    if (m_postpones >= limit)
        return limit == 1
                   ? tr("This break was postponed once already: take it or skip it.")
                   : tr("This break was postponed %1 times in a row already: take it or skip it.").arg(limit);

    PromptState& prompt = AppState::promptState();
    if (WindowController::isBreakShown()) {
        if (prompt.kind() == PromptState::Kind::NewDay)
            return tr("The greeting of a new day cannot be postponed.");
        if (!prompt.showSkipButton())
            return tr("This long break is forced: it cannot be postponed.");
        prompt.repeatBreak();
        WindowController::closeBreak();
    } else if (!AppState::working()) {
        return tr("No break is coming: the countdown is paused or stopped.");
    }

    if (!(seconds > 0))
        seconds = prefs.postponeTime();
    ++m_postpones;
    logger().info(QStringLiteral("break postponed by ") + numberText(seconds) + QStringLiteral(" seconds, ") +
                  numberText(m_postpones) + QStringLiteral(" in a row"));
    HistoryRecorder::instance().postponed(seconds);
    leaveHold();
    m_releasing = false;
    withdrawHeadsUp();
    TicktackController::work(seconds);
    prompt.updatePostponeButton();
    emit changed();
    return {};
}

void BreakGate::breakFinished()
{
    if (m_postpones == 0)
        return;
    m_postpones = 0;
    AppState::promptState().updatePostponeButton();
    emit changed();
}

void BreakGate::startNow()
{
    if (WindowController::isBreakShown() || !AppState::working())
        return;
    logger().info(QStringLiteral("break started early from its heads-up"));
    if (m_held)
        HistoryRecorder::instance().holdReleased(QStringLiteral("start_now"));
    leaveHold();
    showBreakNow();
}

void BreakGate::workTicked()
{
    const TicktackState& work = AppState::workState();
    if (work.secondsLeft() == work.length()) {
        // A fresh work period: whatever stood for the last one is over.
        leaveHold();
        m_releasing = std::exchange(m_releaseStarting, false);
        withdrawHeadsUp();
        m_headsUpSent = false;
    }

    const PrefState& prefs = AppState::prefState();
    if (m_headsUpSent || work.timesUp() || !(work.secondsLeft() > 0) || !prefs.headsUp())
        return;
    const double lead = m_releasing ? releaseDelay : prefs.headsUpSeconds();
    if (work.secondsLeft() > lead || (!m_releasing && work.length() < lead))
        return;
    m_headsUpSent = true;
    m_headsUpShown = true;
    emit headsUpDue(work.secondsLeft(), AppState::promptState().nextKind() == PromptState::Kind::Long);
}

void BreakGate::cycleChanged()
{
    if (AppState::working())
        return;
    // Pause, lock and idleness end a hold as they end a work period.
    leaveHold();
    m_releasing = false;
    withdrawHeadsUp();
}

void BreakGate::holdChanged()
{
    if (!m_held || m_holdSource->holding()) {
        emit changed();
        return;
    }
    logger().info(QStringLiteral("nothing holds the break any more: it comes in ") +
                  numberText(releaseDelay) + QStringLiteral(" seconds"));
    HistoryRecorder::instance().holdReleased(QStringLiteral("cleared"));
    leaveHold();
    m_releaseStarting = true;
    TicktackController::work(releaseDelay);
}

void BreakGate::holdOptionChanged()
{
    const bool on = AppState::prefState().holdBreaks();
    if (on && !m_holdSource) {
        const auto& factory = holdSourceFactory();
        m_holdSource = factory ? factory() : HoldConditions::make();
        if (m_holdSource)
            connect(m_holdSource.get(), &HoldSource::holdingChanged, this, &BreakGate::holdChanged);
    } else if (!on && m_holdSource) {
        m_holdSource.reset();
        if (m_held) {
            HistoryRecorder::instance().holdReleased(QStringLiteral("option_off"));
            leaveHold();
            m_releaseStarting = true;
            TicktackController::work(releaseDelay);
        }
    }
}

void BreakGate::showBreakNow()
{
    m_releasing = false;
    withdrawHeadsUp();
    AppState::promptState().showBreak();
}

void BreakGate::enterHold()
{
    logger().info(QStringLiteral("break held: ") + m_holdSource->reason());
    HistoryRecorder::instance().held();
    m_held = true;
    m_heldSeconds = 0;
    m_releasing = false;
    withdrawHeadsUp();
    TicktackController::countUp([this](double elapsed) {
        m_heldSeconds = elapsed;
        emit changed();
    });
    emit changed();
}

void BreakGate::leaveHold()
{
    if (!m_held)
        return;
    m_held = false;
    m_heldSeconds = 0;
    emit changed();
}

void BreakGate::withdrawHeadsUp()
{
    if (!std::exchange(m_headsUpShown, false))
        return;
    emit headsUpWithdrawn();
}
