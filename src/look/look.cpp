// Placeholder until the look layer arrives.
