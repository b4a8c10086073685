#include "service.hpp"

#include "aaa_service.hpp"
#include "reporter.hpp"

namespace aaanc
{

void serveAlone(const std::string &socket, const OutputOptions &output, TerminationGuard &guard)
{
    const std::unique_ptr<RecordWriter> writer = makeWriter(output, stdout);
    Reporter reporter(*writer);
    RequestHandler handler;
    ServiceSocket service(socket, [&](const CmfRequest &request) {
        Exchange exchange{request, CmfStep::Done, kCmfDone, handler.answer(request)};
        reporter.exchanged(exchange);
        return exchange.reply;
    });
    guard.removeAtEnd(std::filesystem::absolute(socket));
    service.serve();
}

} // namespace aaanc
