#include "delivery.hpp"

#include <algorithm>
#include <utility>

namespace aaanc
{

void Delivery::subscribe(Subscription subscription, bool reused, sr_subscription_ctx_t **context)
{
    if (!reused || *context == nullptr) {
        *context = contexts_.emplace_back(std::make_unique<sr_subscription_ctx_t>()).get();
    }
    (*context)->subscriptions.push_back(std::move(subscription));
}

bool Delivery::unsubscribe(const sr_subscription_ctx_t *context)
{
    return std::erase_if(contexts_, [=](const auto &each) { return each.get() == context; }) != 0;
}

std::size_t Delivery::subscriptionCount() const
{
    std::size_t count = 0;
    forEach([&](const Subscription &) { ++count; });
    return count;
}

bool Delivery::isSubscribed(std::string_view subtree) const
{
    bool found = false;
    forEach([&](const Subscription &subscription) { found |= subscription.xpath == subtree; });
    return found;
}

void Delivery::enable(const ChangeRefs &changes)
{
    thread_.run([&] {
        sr_session_ctx_t session{this};
        forEach([&](const Subscription &subscription) {
            call(subscription, session, SR_EV_ENABLED, changesBelow(changes, subscription.xpath));
        });
    });
}

bool Delivery::commit(const ChangeRefs &changes, const std::function<ChangeSet()> &invert)
{
    bool accepted = true;
    thread_.run([&] {
        sr_session_ctx_t session{this}; // the same for all callbacks of the commit
        accepted = callTouched(session, SR_EV_VERIFY, changes) == 0;
        if (accepted) {
            callTouched(session, SR_EV_APPLY, changes);
        } else {
            const ChangeSet inverse = invert();
            callTouched(session, SR_EV_ABORT, inverse.refs);
        }
    });
    return accepted;
}

int Delivery::notify(std::string_view subtree, sr_notif_event_t event, const ChangeRefs &changes)
{
    int result = 0;
    thread_.run([&] {
        sr_session_ctx_t session{this};
        forEach([&](const Subscription &subscription) {
            if (subscription.xpath == subtree) {
                result = call(subscription, session, event, changes);
            }
        });
    });
    return result;
}

int Delivery::callTouched(sr_session_ctx_t &session, sr_notif_event_t event,
                          const ChangeRefs &changes)
{
    int first_failure = 0;
    forEach([&](const Subscription &subscription) {
        const ChangeRefs below = changesBelow(changes, subscription.xpath);
        if (below.empty()) {
            return;
        }
        const int result = call(subscription, session, event, below);
        first_failure = first_failure != 0 ? first_failure : result;
    });
    return first_failure;
}

int Delivery::call(const Subscription &subscription, sr_session_ctx_t &session,
                   sr_notif_event_t event, const ChangeRefs &changes)
{
    const Notification notification{subscription.xpath, event, &changes};
    if (observer_ != nullptr) {
        observer_->callbackBegins(notification);
    }
    session.subtree = subscription.xpath;
    session.changes = &changes;
    const int result = subscription.callback(&session, subscription.xpath.c_str(), event,
                                             subscription.private_ctx);
    session.iterators.clear();
    if (observer_ != nullptr) {
        observer_->callbackEnded(notification, result);
    }
    return result;
}

void Delivery::forEach(const std::function<void(const Subscription &)> &action) const
{
    for (const auto &context : contexts_) {
        std::ranges::for_each(context->subscriptions, action);
    }
}

} // namespace aaanc
