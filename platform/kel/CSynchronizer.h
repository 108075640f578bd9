#pragma once

/// Synchronises a process with others of its chain; a process that runs alone needs nothing of it.
class CSynchronizer {};
