#include "player/TransportPlanner.h"

#include <algorithm>

namespace quorel {

namespace {

using Action = TransportStep::Action;
using Order = TransportStep::Order;

/// Further into a track than this, "previous" means its beginning. Seconds.
constexpr double kRestartAfter = 4.0;

bool isPlayable(const TransportContext& context, const std::optional<QUuid>& track) {
    return track && context.list->contains(*track) && !context.failed.contains(*track);
}

std::optional<qsizetype> cursorRow(const TransportContext& context) {
    return context.cursor ? context.list->rowOf(*context.cursor) : std::nullopt;
}

std::optional<QUuid> nextInOrder(const TransportContext& context, bool repeat) {
    return context.order.peekNext(*context.list, context.cursor, repeat, context.failed);
}

std::optional<QUuid> nextInList(const TransportContext& context, bool repeat) {
    const qsizetype count = context.list->size();
    const auto row = cursorRow(context);
    const qsizetype first = row ? *row + 1 : std::min(context.orphanNext.value_or(0), count);
    for (qsizetype i = first; i < (repeat ? first + count : count); ++i) {
        const QUuid& track = context.list->tracks().at(i % count).id;
        if (!context.failed.contains(track))
            return track;
    }
    return std::nullopt;
}

} // namespace

TransportStep planNext(const TransportContext& context, bool automatic) {
    if (!context.list)
        return {};
    if (context.list->isEmpty() || (automatic && context.mode == PlaybackMode::StopAfter))
        return {Action::Stop};
    if (automatic && context.mode == PlaybackMode::One && isPlayable(context, context.cursor))
        return {Action::Play, *context.cursor};
    const bool repeat = context.mode == PlaybackMode::All;
    std::optional<QUuid> next = context.planned;
    if (!isPlayable(context, next))
        next = context.shuffle ? nextInOrder(context, repeat) : nextInList(context, repeat);
    if (!next)
        return {Action::Stop};
    return {Action::Play, *next, context.shuffle ? Order::Takes : Order::Stays};
}

TransportStep planPrevious(const TransportContext& context, double position) {
    if (position > kRestartAfter)
        return {Action::SeekToStart};
    if (!context.list)
        return {};
    if (context.list->isEmpty())
        return {Action::Stop};
    const auto row = cursorRow(context);
    if (!context.shuffle) {
        const qsizetype here =
            row.value_or(std::min(context.orphanNext.value_or(0), context.list->size()));
        return {Action::Play, context.list->tracks().at(std::max<qsizetype>(here - 1, 0)).id};
    }
    if (const auto previous = context.order.peekPrevious(*context.list))
        return {Action::Play, *previous, Order::GoesBack};
    if (row)
        return {Action::Play, *context.cursor};
    // Nothing came before, and a track that has left its playlist can only be begun anew.
    return {context.cursor ? Action::SeekToStart : Action::Nothing};
}

std::optional<QUuid> planFollowing(TransportContext context) {
    context.planned.reset();
    const TransportStep step = planNext(context, true);
    return step.action == Action::Play ? std::optional(step.track) : std::nullopt;
}

std::optional<QUuid> planPlayButton(const TrackList& shown, const std::optional<QUuid>& selected,
                                    const std::optional<QUuid>& playing, bool isLoaded) {
    if (selected && selected != playing && shown.contains(*selected))
        return selected;
    if (isLoaded || shown.isEmpty())
        return std::nullopt;
    return shown.tracks().front().id;
}

} // namespace quorel
