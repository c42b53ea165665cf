#pragma once

#include <gtest/gtest.h>

#include <exception>
#include <string>

#include "dsp/orvan_dsp_exception.h"

/// What a call has to say.
struct Failure {
    std::string message;  // of the exception that ended it; empty if it came to its end
    std::string line;     // what it wrote to standard error, as each of our exceptions does
};

template <typename Call>
Failure FailureOf(Call const& call) {
    Failure failure;
    testing::internal::CaptureStderr();
    try {
        call();
    } catch (orvandsp::OrvanDspException const& exception) {
        failure.message = exception.what();
    }
    failure.line = testing::internal::GetCapturedStderr();
    return failure;
}

/// The message of the exception that ends a call; empty if it comes to its end.
template <typename Call>
std::string ComplaintOf(Call const& call) {
    try {
        call();
    } catch (std::exception const& error) {
        return error.what();
    }
    return {};
}
