// Placeholder until the shell layer arrives.
