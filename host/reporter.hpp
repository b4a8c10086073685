// Makes records of what happens in a run, and counts.
#pragma once

#include "delivery.hpp"
#include "records.hpp"

namespace aaanc
{

class Reporter : public DeliveryObserver, public ExchangeObserver
{
public:
    explicit Reporter(RecordWriter &writer) : writer_(writer) {}

    void stageBegins(const StageRecord &stage);
    void callbackBegins(const Notification &notification) override;
    void callbackEnded(const Notification &notification, int result) override;
    void exchanged(const Exchange &exchange) override;
    [[nodiscard]] const Summary &summary() const
    {
        return summary_;
    }

private:
    RecordWriter &writer_;
    CallbackRecord callback_; // under way, or the last one
    bool in_callback_ = false;
    Summary summary_;
};

} // namespace aaanc
