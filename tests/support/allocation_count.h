#pragma once

/// Number of calls of operator new on this thread since it began. The test programs replace operator new, so that a
/// test can show that a piece of code allocates nothing:
///
///     const long before = AllocationCount();
///     reverb.Process(outputs, inputs, 64, orvandsp::allActiveInputs);
///     EXPECT_EQ(AllocationCount(), before);
long AllocationCount() noexcept;
