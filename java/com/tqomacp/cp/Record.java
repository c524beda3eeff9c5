package com.tqomacp.cp;

import java.util.Arrays;
import java.util.List;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/**
 * An immutable record read from a parsed document: its string fields first, then its child lists,
 * in the order the reader's table gives them. Two records are equal when they are of the same
 * kind and every field and child is equal.
 */
abstract class Record {
  private final Object[] parts;

  Record(Object[] parts) {
    this.parts = parts;
  }

  final @Nullable Object part(int index) {
    return parts[index];
  }

  final @Nullable String text(int index) {
    return (String) parts[index];
  }

  @SuppressWarnings("unchecked")
  final <T> @NotNull List<T> list(int index) {
    return (List<T>) parts[index];
  }

  /** Whether {@code other} is a record of the same kind with equal fields and children. */
  @Override
  public final boolean equals(@Nullable Object other) {
    return other != null
        && other.getClass() == getClass()
        && Arrays.equals(parts, ((Record) other).parts);
  }

  /** A hash of the fields and children. */
  @Override
  public final int hashCode() {
    return getClass().hashCode() * 31 + Arrays.hashCode(parts);
  }

  /** The kind, then the fields and children in the reader's order. */
  @Override
  public final @NotNull String toString() {
    return getClass().getSimpleName() + Arrays.toString(parts);
  }
}
