#include "reader/formats/step/import/HostLink.h"

#include "raylume/platform/WorkerProcess.h"

namespace ovdl::step {

void HostLink::say(Message message, std::string_view rest) const
{
    platform::writeToPipe(pipe_, lineOf(message, shortened(rest, kLongestReason)));
}

void HostLink::beginStep(double end)
{
    begin_ = end_;
    end_ = end;
    tell(0);
}

void HostLink::tell(double done)
{
    // Finer than anybody sees, and few enough never to wait for the reader.
    constexpr double kStep = 0.002;
    const double share = begin_ + done * (end_ - begin_);
    if (!(share >= told_ + kStep))
        return;
    told_ = share;
    say(Message::kProgress, textOf(share));
}

void StepIndicator::Show(const Message_ProgressScope&, Standard_Boolean)
{
    link_.tell(GetPosition());
}

}  // namespace ovdl::step
