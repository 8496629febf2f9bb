#pragma once

/// The pages of the manual, inside the programs as ":/manual/".
namespace ManualPages {

/// To be called before a page is read; further calls do nothing.
void makeAvailable();

} // namespace ManualPages
