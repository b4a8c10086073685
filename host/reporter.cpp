#include "reporter.hpp"

namespace aaanc
{

void Reporter::stageBegins(const StageRecord &stage)
{
    summary_.commits += stage.kind == StageKind::Edit ? 1 : 0;
    summary_.recordings += stage.kind == StageKind::Recording ? 1 : 0;
    writer().stage(stage);
    if (progress_ != nullptr) {
        progress_->begin(stage.changes);
    }
}

void Reporter::callbackBegins(const Notification &notification)
{
    ++summary_.callbacks;
    in_callback_ = true;
    callback_ = {summary_.callbacks, notification.subtree, notification.event,
                 notification.changes->size()};
    writer().callbackBegins(callback_);
}

void Reporter::callbackEnded(const Notification & /*notification*/, int result)
{
    summary_.failed_callbacks += result != 0 ? 1 : 0;
    in_callback_ = false;
    callback_.result = result;
    writer().callbackEnded(callback_);
}

void Reporter::changeTaken()
{
    if (progress_ != nullptr) {
        progress_->advance();
    }
}

void Reporter::exchanged(const Exchange &exchange)
{
    requested(exchange.request.parameter.data, answerOf(exchange),
              exchange.step <= CmfStep::Send ? "not sent" : kTooShort);
}

void Reporter::requested(const Bytes &block, const Answer &answer, std::string_view undecoded)
{
    ++summary_.requests;
    const RequestRecord record{summary_.requests,
                               in_callback_ ? callback_.number : 0,
                               block,
                               decodeRequest(block),
                               undecoded,
                               answer};
    ++(!record.answer.result        ? summary_.unanswered
       : *record.answer.result == 0 ? summary_.accepted
                                    : summary_.refused);
    writer().request(record);
}

// The writer, with room for what it writes.
RecordWriter &Reporter::writer()
{
    if (progress_ != nullptr) {
        progress_->makeRoom();
    }
    return writer_;
}

} // namespace aaanc
