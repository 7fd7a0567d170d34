#pragma once

// Each adds its comparisons to those that are run.
void addStartUp();
void addChildProcesses();
void addInstallation();
void addDependencies();
void addRefresh();
void addVerification();

/// Runs one start-up in this process and prints "<seconds> <bytes per item beyond its texts>".
/// @param kind      "ours", "first" (ours, for the items of the first store) or "floor"
/// @param data      the data root, which the environment must name too
/// @param validate  "validated"; anything else leaves validation out
int startUpOnce(const char* kind, const char* data, const char* validate);
