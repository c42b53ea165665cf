#pragma once

/// Number of locks that this thread has taken since it began, and of waits for a condition. Not under a sanitizer,
/// which needs these calls for itself: 0 then.
long LockCount() noexcept;
