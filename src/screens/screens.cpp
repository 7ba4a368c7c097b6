// Placeholder until the screens layer arrives.
