#pragma once

#include <string>

/// The host's environment, read through named contexts. The embedded host has one environment for
/// all of them, that of the process, so a context only has to be named.
///
/// Returned texts are zero-terminated and owned by the caller, who frees those of
/// `astr_expand_environment_value` with `gmem_ee_free` and those of `astr_environment_value` with
/// `astr_free_string`.

/// Returns `text` with every `$NAME` and `${NAME}` replaced by the variable's value (nothing when
/// it is not set); a `$` that begins neither stays. Null when `text` is null.
char* astr_expand_environment_value(const char* context, const char* text);
/// Selects the context that `astr_environment_value` reads.
void astr_set_environment(const char* context);
/// Returns the variable's value, which may be empty; null when it is not set, and when `name` is
/// null.
char* astr_environment_value(const char* name);
/// Frees a text of `astr_environment_value`; null is allowed.
void astr_free_string(char* text);
/// Frees a text of `astr_expand_environment_value`; null is allowed.
void gmem_ee_free(void* memory);
