// What the program tells the reader that started it.
#pragma once

#include <Message_ProgressIndicator.hxx>
#include <string_view>

#include "reader/formats/step/ImportProtocol.h"

namespace ovdl::step {

/// The document cannot be read: why, in one line of UTF-8.
struct Refusal {
    std::string reason;
};

/// Tells how far the import is. Steps come one after the other, each with its share of the whole.
class HostLink {
public:
    explicit HostLink(int pipe) : pipe_(pipe) {}

    void say(Message message, std::string_view rest) const;
    /// The next step reaches from where the last one ended up to `end`, a share of the whole.
    void beginStep(double end);
    /// How much of the step is done, from 0 to 1.
    void tell(double done);

private:
    int pipe_;
    double begin_ = 0;
    double end_ = 0;
    double told_ = 0;
};

/// Follows a step of Open CASCADE. There is no need to break one off: the process ends with its pipe.
class StepIndicator : public Message_ProgressIndicator {
public:
    explicit StepIndicator(HostLink& link) : link_(link) {}

private:
    void Show(const Message_ProgressScope& scope, Standard_Boolean isForced) override;

    HostLink& link_;
};

}  // namespace ovdl::step
