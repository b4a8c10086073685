// Makes records of what happens in a run, and counts.
#pragma once

#include "delivery.hpp"
#include "progress.hpp"
#include "records.hpp"

namespace aaanc
{

class Reporter : public DeliveryObserver, public ExchangeObserver
{
public:
    // The progress may be null; both outlive this.
    explicit Reporter(RecordWriter &writer, Progress *progress = nullptr)
        : writer_(writer), progress_(progress)
    {
    }

    void stageBegins(const StageRecord &stage);
    void callbackBegins(const Notification &notification) override;
    void callbackEnded(const Notification &notification, int result) override;
    void changeTaken() override;
    void exchanged(const Exchange &exchange) override;
    // A request, and what became of it. `undecoded` is what to call it where its block
    // is too short to be read.
    void requested(const Bytes &block, const Answer &answer, std::string_view undecoded);
    [[nodiscard]] const Summary &summary() const
    {
        return summary_;
    }

private:
    RecordWriter &writer();

    RecordWriter &writer_;
    Progress *progress_;
    CallbackRecord callback_; // under way, or the last one
    bool in_callback_ = false;
    Summary summary_;
};

} // namespace aaanc
