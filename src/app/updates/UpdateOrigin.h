#pragma once

// Who started an update session: the user, who sees every outcome, or the
// daily schedule, which stays quiet unless there is something to act on.
enum class UpdateOrigin { User, Scheduled };
