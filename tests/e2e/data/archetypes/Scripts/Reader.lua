print("reader", speed)
