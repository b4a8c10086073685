// Delivers changes to the subscriptions of a plug-in, as sysrepo 0.7 does.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "changes.hpp"
#include "notification_thread.hpp"
#include "sysrepo.h"

namespace aaanc
{

class Delivery;

struct Subscription {
    std::string xpath;
    sr_subtree_change_cb callback = nullptr;
    void *private_ctx = nullptr;
};

} // namespace aaanc

// The plug-in's subscriptions, in the order of their making.
struct sr_subscription_ctx_s {
    std::vector<aaanc::Subscription> subscriptions;
};

struct sr_change_iter_s {
    sr_session_ctx_s *session = nullptr; // that owns it
    aaanc::ChangeRefs changes;
    std::size_t next = 0;
};

// A session: the daemon's own, or the one that the callbacks of a commit get.
struct sr_session_ctx_s {
    aaanc::Delivery *delivery = nullptr;
    std::string_view subtree{};                 // of the callback under way
    const aaanc::ChangeRefs *changes = nullptr; // that it is about
    // Given to it and not freed so far. A callback may leave one behind.
    std::vector<std::unique_ptr<sr_change_iter_s>> iterators{};
};

namespace aaanc
{

// A call of a callback.
struct Notification {
    std::string_view subtree;
    sr_notif_event_t event = SR_EV_VERIFY;
    const ChangeRefs *changes = nullptr;
};

// Told of each callback, on the notification thread.
class DeliveryObserver
{
public:
    virtual ~DeliveryObserver() = default;
    virtual void callbackBegins(const Notification &notification) = 0;
    virtual void callbackEnded(const Notification &notification, int result) = 0;
    // The callback under way has taken another change.
    virtual void changeTaken() {}
};

class Delivery
{
public:
    // `observer` may be null; it outlives this.
    explicit Delivery(DeliveryObserver *observer) : observer_(observer) {}

    // The session of the daemon.
    [[nodiscard]] sr_session_ctx_t *session()
    {
        return &session_;
    }

    // Makes a subscription, in the context `*context` or, where that is to be
    // `reused` but null or is not to be, in a new one.
    void subscribe(Subscription subscription, bool reused, sr_subscription_ctx_t **context);
    // Ends all subscriptions of the context; false when there is no such context.
    bool unsubscribe(const sr_subscription_ctx_t *context);
    [[nodiscard]] std::size_t subscriptionCount() const;
    [[nodiscard]] bool isSubscribed(std::string_view subtree) const;

    // ENABLED to every subscription, with what is below it among `changes`.
    void enable(const ChangeRefs &changes);

    // VERIFY to every subscription that `changes` touch, then APPLY. Where a
    // VERIFY returned non-zero, ABORT comes instead of APPLY, with the changes
    // the other way round, worked out by `invert`, and the result is false: the
    // commit is refused.
    bool commit(const ChangeRefs &changes, const std::function<ChangeSet()> &invert);

    // One callback of every subscription at `subtree`; 0 when there is none.
    int notify(std::string_view subtree, sr_notif_event_t event, const ChangeRefs &changes);

    void changeTaken()
    {
        if (observer_ != nullptr) {
            observer_->changeTaken();
        }
    }

private:
    int call(const Subscription &subscription, sr_session_ctx_t &session, sr_notif_event_t event,
             const ChangeRefs &changes);
    // Calls every subscription that has something below it; the first non-zero result.
    int callTouched(sr_session_ctx_t &session, sr_notif_event_t event, const ChangeRefs &changes);
    void forEach(const std::function<void(const Subscription &)> &action) const;

    DeliveryObserver *observer_;
    sr_session_ctx_t session_{this};
    std::vector<std::unique_ptr<sr_subscription_ctx_t>> contexts_;
    NotificationThread thread_;
};

} // namespace aaanc
