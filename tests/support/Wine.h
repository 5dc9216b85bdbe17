#pragma once
// Where the tests run differs in a few places; tests ask instead of guessing.

// True under Wine (its ntdll exports wine_get_version).
bool runningOnWine();
