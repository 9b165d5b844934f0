static_assert(__cplusplus == 201703L, "the parent's language level");
